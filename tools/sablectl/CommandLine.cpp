#include "CommandLine.h"

namespace sable::ctl {

int Context::fail(const QString& message) const
{
    err << "sablectl: " << message << Qt::endl;
    return kFailure;
}

bool takeFlag(QStringList& args, const QString& name)
{
    return args.removeAll(name) > 0;
}

std::optional<QString> takeOption(QStringList& args, const QString& name, bool* missingValue)
{
    *missingValue = false;
    for (qsizetype i = 0; i < args.size(); ++i) {
        if (args[i] == name) {
            if (i + 1 >= args.size()) {
                *missingValue = true;
                args.removeAt(i);
                return std::nullopt;
            }
            const QString value = args[i + 1];
            args.remove(i, 2);
            return value;
        }
        if (args[i].startsWith(name + u'=')) {
            const QString value = args[i].mid(name.size() + 1);
            args.removeAt(i);
            return value;
        }
    }
    return std::nullopt;
}

} // namespace sable::ctl
