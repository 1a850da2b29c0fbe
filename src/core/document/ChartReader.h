#pragma once

#include "document/CSableManagerDoc.h"
#include "orgchart/ChartBuilder.h"

#include <QString>

#include <atomic>
#include <functional>

namespace sable {

class DbConnection;

// Where a load reports how far it is.
class LoadProgress
{
public:
    virtual ~LoadProgress() = default;
    virtual void setText(const QString& text) = 0;
    virtual void setRange(int count) = 0;
    virtual void setPosition(int position) = 0;
};

// Reads the whole chart, the ranks and the file-box lists from the database into fresh contents.
class ChartReader
{
public:
    enum class Outcome
    {
        Loaded,
        Stopped, // stopped between two phases: nothing to tell
        OpenFailed, // no connection, or stopped inside a phase: "데이터 베이스 파일을 여는중 오류가 발생했습니다."
        ReadFailed, // a statement failed: "데이터 베이스를 읽는 중 오류가 발생했습니다."
    };

    struct Result
    {
        Outcome outcome = Outcome::Loaded;
        ChartContents contents; // what was read, also when the load did not finish
        LoadProblems problems; // what the chart could not place as the rows say
        QString errorText; // the database's error text of a failure
    };

    // What the contents are read for. Only what may be saved again needs the print of what the
    // database holds (contents.stored), which costs a fifth of a large chart's load.
    enum class Use
    {
        Editing,
        ReadingOnly, // an export: contents.stored stays empty
    };

    // `connect` opens the database as start-up chooses it; `bContinue` goes to 0 when the
    // administrator stops the load and is looked at for every row and between the phases.
    static Result read(const std::function<DbConnection()>& connect, LoadProgress& progress,
        const std::atomic<int>& bContinue, Use use = Use::Editing);

    // The message the administrator sees for an outcome; empty for none.
    static QString message(Outcome outcome);
    // What the load could not place, with what the next save does with it; empty when nothing.
    static QString describe(const LoadProblems& problems);
};

} // namespace sable
