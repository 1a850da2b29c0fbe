// Saves the chart of a JSON file through the core's save, replacing whatever the database holds,
// as `sablectl chart import --yes` does, but without a server to tell: the program that
// tst_save_kill kills in the middle of its save.
// usage: chartsaver CONNECTION_STRING SETTINGS_FILE CHART_JSON RESTORE_FOLDER
//        (exit 0 saved, 1 not saved, 2 usage)

#include "db/DbConnection.h"
#include "document/Balloon.h"
#include "document/CSableManagerDoc.h"
#include "document/ChartJson.h"
#include "document/ChartSave.h"
#include "platform/IniFile.h"

#include <QCoreApplication>
#include <QFile>

#include <cstdio>

using namespace sable;

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    const QStringList args = app.arguments();
    QFile file(args.value(3));
    if (args.size() != 5 || !file.open(QIODevice::ReadOnly))
        return 2;
    QString problem;
    const std::optional<ChartTables> tables = ChartJson::readFile(file, &problem);
    if (!tables) {
        std::fprintf(stderr, "chartsaver: %s\n", qPrintable(problem));
        return 2;
    }
    CSableManagerDoc doc;
    doc.adopt(tables->toContents());
    doc.setModified(true);

    const QString connection = args[1];
    ChartSave::Collaborators with;
    with.askYesNo = [](const QString&) { return true; };
    with.showBalloon
        = [](const Balloon& balloon) { std::fprintf(stderr, "chartsaver: %s\n", qPrintable(balloon.text)); };
    with.connect = [connection] {
        DbConnection db;
        return db.open(connection) ? std::move(db) : DbConnection();
    };
    with.sendChartChangedNotice = [] { return true; };
    with.program = QStringLiteral("chartsaver");
    with.bReplace = true;
    with.restoreFolder = args[4];
    return ChartSave::run(doc, IniFile(args[2]), with) == ChartSave::Outcome::Saved ? 0 : 1;
}
