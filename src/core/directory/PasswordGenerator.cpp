#include "directory/PasswordGenerator.h"

#include <QRandomGenerator>

#include <vector>

namespace sable::PasswordGenerator {

QString generate(int length, const QString& alphabet)
{
    if (length <= 0 || alphabet.isEmpty())
        return {};
    // One call for the whole password: tens of thousands of new users take one call each.
    std::vector<quint32> random(static_cast<size_t>(length));
    QRandomGenerator::system()->fillRange(random.data(), random.size());
    const auto size = static_cast<quint64>(alphabet.size());
    QString password;
    password.reserve(length);
    for (const quint32 value : random)
        password += alphabet[static_cast<qsizetype>((value * size) >> 32)];
    return password;
}

} // namespace sable::PasswordGenerator
