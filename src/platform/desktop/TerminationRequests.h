// The system's wish that the program end: a logout, a shutdown, Ctrl+C in a terminal.
//
// Without it a signal cuts off whatever is being written, and nothing is undone. The first signal is reported. Others
// that follow are part of the same wish, as a logout sends two; only another Ctrl+C, a second later, ends the program
// at once. A signal that was ignored at the start stays so. One object at a time; UI thread.
#pragma once

#include <QObject>

class TerminationRequests final : public QObject {
    Q_OBJECT

public:
    explicit TerminationRequests(QObject *parent = nullptr);
    ~TerminationRequests() override;

Q_SIGNALS:
    void requested();
};
