// Writes registry values for the tests that run writers at once or kill them.
// usage: regwriter HKLM_FILE PREFIX COUNT   COUNT values PREFIX0.. PREFIX(COUNT-1), one write at a time
//        regwriter HKLM_FILE --generations  forever: generation N written as four values of one batch,
//                                           "N" on standard output after each

#include "platform/RegFileBackend.h"

#include <QCoreApplication>

#include <cstdio>

namespace {

const std::string kKey = "SOFTWARE\\Halvex\\Race";

int writeOneByOne(sable::RegFileBackend& backend, const QString& prefix, int count)
{
    for (int i = 0; i < count; ++i) {
        const std::string name = QString(prefix + QString::number(i)).toStdString();
        if (!backend.writeDword(sable::RegRoot::LocalMachine, kKey, name, static_cast<std::uint32_t>(i)))
            return 1;
    }
    return 0;
}

// Values that belong together, each naming its generation, and a long one so that a write takes a
// while: a kill that lands inside it leaves a half-written temporary file if anything does.
int writeGenerations(sable::RegFileBackend& backend)
{
    const std::string padding(64 * 1024, 'x');
    for (std::uint32_t generation = 1;; ++generation) {
        const std::string tag = std::to_string(generation);
        if (!backend.writeValues(sable::RegRoot::LocalMachine, kKey,
                {{"URL", "http://host-" + tag + "/RPC2"}, {"User", "user-" + tag}, {"Password", "secret-" + tag},
                    {"Generation", generation}, {"Padding", padding}}))
            return 1;
        std::printf("%u\n", generation);
        std::fflush(stdout);
    }
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    const QStringList args = app.arguments();
    if (args.size() < 3)
        return 2;
    sable::RegFileBackend backend(args[1], args[1] + QStringLiteral(".hkcu"));
    if (!backend.createKey(sable::RegRoot::LocalMachine, kKey))
        return 1;
    if (args.size() == 3 && args[2] == QLatin1String("--generations"))
        return writeGenerations(backend);
    return args.size() == 4 ? writeOneByOne(backend, args[2], args[3].toInt()) : 2;
}
