#pragma once

#include <QObject>
#include <QStringList>

class QHeaderView;
class QSplitter;
class QWidget;
class StateFile;

/// Keeps from one start to the next how the user has arranged the window: its geometry, the columns of a
/// table, splitters. What the state file holds is checked piece by piece; what makes no sense leaves that
/// piece as it was laid out.
class WindowMemory : public QObject
{
    Q_OBJECT

public:
    /// `state` must outlive this object.
    explicit WindowMemory(StateFile &state, QObject *parent = nullptr);

    /// Gives the window the size, the place and the state that were kept; on a screen that is still there.
    void restoreGeometry(QWidget &window) const;
    /// To be called while the window still has a geometry worth keeping: when it is hidden, say.
    void keepGeometry(const QWidget &window);

    /// Gives the columns the widths and the order that were kept, and keeps both from now on. Columns are
    /// told apart by what the model's header has under `identifierRole`. The first one has its place, and the
    /// last one gets the width that is left.
    void bindColumns(QHeaderView &header, int identifierRole);

    /// Gives the splitter's parts the sizes that were kept, and keeps them from now on under the splitter's
    /// object name.
    void bindSplitter(QSplitter &splitter);

private:
    void keepOrder(const QHeaderView &header, const QStringList &identifiers);

    StateFile &state_;
};
