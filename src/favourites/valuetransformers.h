#pragma once

#include <QString>
#include <QVariant>
#include <map>
#include <memory>

/// Turns the value of a record into what a view shows of it.
class ValueTransformer
{
public:
    virtual ~ValueTransformer() = default;

    /// Whether it declares a way back. There is none behind it unless a transformer says so.
    virtual bool allowsReverseTransformation() const = 0;
    /// Invalid where `value` has nothing to show.
    virtual QVariant transformedValue(const QVariant &value) const = 0;
};

/// The transformers that a window's layout finds by their names. Owns them.
class ValueTransformers
{
public:
    void setValueTransformer(std::unique_ptr<ValueTransformer> transformer, const QString &name);
    /// Null where there is none of that name.
    const ValueTransformer *valueTransformerForName(const QString &name) const;

private:
    std::map<QString, std::unique_ptr<ValueTransformer>> transformers_;
};

/// Turns the artwork of a station record into the path of a picture's file: the two default pictures' names
/// into those of the program's resources, every other path into itself.
class PathTransformer : public ValueTransformer
{
public:
    /// What transformedValue() gives.
    static QMetaType transformedValueClass() { return QMetaType::fromType<QString>(); }

    bool allowsReverseTransformation() const override { return true; }
    QVariant transformedValue(const QVariant &value) const override;
};
