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
    // One of `choices` (its index), or -1 when the question is cancelled.
    std::function<int(QWidget* parent, const QString& question, const QStringList& choices)> choose;

    // Message boxes, titled with the window's title.
    static Prompter messageBoxes();
};

} // namespace sable
