#pragma once

#include <QtCore/QTemporaryFile>

#include <cstdio>
#include <unistd.h>
#include <utility>

/// Keeps what the process prints while it lives.
class PrintedText
{
public:
    PrintedText()
    {
        std::fflush(stdout);
        if (file_.open())
            dup2(file_.handle(), STDOUT_FILENO);
    }
    ~PrintedText() { take(); }
    PrintedText(const PrintedText&) = delete;
    PrintedText& operator=(const PrintedText&) = delete;

    /// Ends the keeping. @return what was printed.
    QByteArray take()
    {
        if (terminal_ < 0)
            return {};
        std::fflush(stdout);
        dup2(terminal_, STDOUT_FILENO);
        close(std::exchange(terminal_, -1));
        file_.seek(0);
        return file_.readAll();
    }

private:
    int terminal_ = dup(STDOUT_FILENO);
    QTemporaryFile file_;
};
