#pragma once

#include <QString>

namespace sable::PasswordGenerator {

// A password of `length` characters drawn evenly from `alphabet` by the system's cryptographic
// random source.
QString generate(int length, const QString& alphabet);

} // namespace sable::PasswordGenerator
