#pragma once

#include <QObject>

class QSplitter;
class QWidget;
class StateFile;

/// Keeps from one start to the next how the user has arranged the window: its geometry and its
/// splitters. What the state file holds is checked piece by piece; what makes no sense leaves that
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

    /// Gives the splitter's parts the sizes that were kept, and keeps them from now on under the splitter's
    /// object name.
    void bindSplitter(QSplitter &splitter);

private:
    StateFile &state_;
};
