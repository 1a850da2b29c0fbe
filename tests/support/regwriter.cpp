// Writes COUNT registry values named PREFIX0.. PREFIX(COUNT-1) into one key, one write at a time,
// so that tests can run two writers at once. usage: regwriter HKLM_FILE PREFIX COUNT

#include "platform/RegFileBackend.h"

#include <QCoreApplication>

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    const QStringList args = app.arguments();
    if (args.size() != 4)
        return 2;
    sable::RegFileBackend backend(args[1], args[1] + QStringLiteral(".hkcu"));
    const std::string key = "SOFTWARE\\Halvex\\Race";
    if (!backend.createKey(sable::RegRoot::LocalMachine, key))
        return 1;
    for (int i = 0; i < args[3].toInt(); ++i) {
        const std::string name = QString(args[2] + QString::number(i)).toStdString();
        if (!backend.writeDword(sable::RegRoot::LocalMachine, key, name, static_cast<std::uint32_t>(i)))
            return 1;
    }
    return 0;
}
