#include "favourites/valuetransformers.h"

#include "favourites/radiomodel.h"

#include <QFile>
#include <utility>

void ValueTransformers::setValueTransformer(std::unique_ptr<ValueTransformer> transformer,
                                            const QString &name)
{
    transformers_.insert_or_assign(name, std::move(transformer));
}

const ValueTransformer *ValueTransformers::valueTransformerForName(const QString &name) const
{
    const auto found = transformers_.find(name);
    return found == transformers_.end() ? nullptr : found->second.get();
}

QVariant PathTransformer::transformedValue(const QVariant &value) const
{
    const QString name = value.toString();
    if (name == RadioModel::directoryArtwork || name == RadioModel::customArtwork) {
        const QString resource = QLatin1StringView(":/artwork/") + name;
        return QFile::exists(resource) ? QVariant(resource) : QVariant();
    }
    return value;
}
