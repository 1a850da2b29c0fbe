#pragma once

#include <QStringView>

namespace sable::LeadingNumber {

// The number at the start of a text, as the C library's atoi reads it: optional blanks and a sign,
// then decimal digits up to the first other character; beyond the range of int it stays at the limit.
int decimal(QStringView text);

// The number at the start of a settings-file value, as the system's own routine reads it: like
// decimal(), but also 0x, 0o and 0b prefixed numbers, and wrapping round 32 bits as that routine does.
int profileValue(QStringView text);

} // namespace sable::LeadingNumber
