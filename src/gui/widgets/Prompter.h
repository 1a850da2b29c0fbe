#pragma once

#include <QString>
#include <QStringList>

#include <functional>

class QWidget;

namespace sable {

// How the console asks and tells: Yes/No and Yes/No/Cancel questions and plain messages. The
// window's parts ask through one of these, so that tests can answer instead of a person.
struct Prompter
{
    enum class Answer
    {
        Yes,
        No,
        Cancel,
    };

    std::function<bool(QWidget* parent, const QString& question)> askYesNo;
    // A question with more to read below it (shown smaller, under the question).
    std::function<bool(QWidget* parent, const QString& question, const QString& details)> askYesNoDetailed;
    std::function<Answer(QWidget* parent, const QString& question)> askYesNoCancel;
    std::function<void(QWidget* parent, const QString& text)> inform;
    std::function<void(QWidget* parent, const QString& text)> warn;
    // A question whose Yes destroys something (a deletion, stopping the server): No is the default,
    // so that Enter alone never destroys. Unset, askYesNo asks it.
    std::function<bool(QWidget* parent, const QString& question)> askToDestroy;
    // A failure: what failed, in one Korean line, with the technical text kept under a details
    // button. Unset, warn tells both.
    std::function<void(QWidget* parent, const QString& summary, const QString& details)> reportError;

    bool confirmDestroy(QWidget* parent, const QString& question) const;
    void showError(QWidget* parent, const QString& summary, const QString& details) const;

    // One of `choices` (its index), or -1 when the question is cancelled.
    std::function<int(QWidget* parent, const QString& question, const QStringList& choices)> choose;

    // Message boxes, titled with the window's title.
    static Prompter messageBoxes();
};

} // namespace sable
