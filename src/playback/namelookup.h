#pragma once

#include <QObject>

/// Finds out whether the name of a server is known, before libmpv is given it: a name server that does not
/// answer holds one of Qt's lookup threads here, and would hold a thread of the player there. Main thread.
class NameLookup : public QObject
{
    Q_OBJECT

public:
    NameLookup() = default;
    ~NameLookup() override;

    /// Starts one lookup, to be followed by one signal; a lookup that still runs has to be cancelled first.
    void start(const QString &name);
    /// Nothing is signalled any more; does nothing where no lookup runs.
    void cancel();

Q_SIGNALS:
    void found();
    void notFound();

private:
    static constexpr int noLookup = -1;

    int id_ = noLookup;
};
