#include "ui/widgets/foldedname.h"

QString foldedName(const QString &name)
{
    QString folded;
    for (const QChar unit : name.normalized(QString::NormalizationForm_KD).toCaseFolded()) {
        if (!unit.isMark() && !unit.isSpace() && unit.category() != QChar::Punctuation_Dash) {
            folded.append(unit);
        }
    }
    return folded;
}
