#include "widgets/ByteLimitValidator.h"

#include "platform/CodePage949.h"

namespace sable {

ByteLimitValidator::ByteLimitValidator(int maxBytes, QObject* parent)
    : QValidator(parent)
    , m_maxBytes(maxBytes)
{ }

QValidator::State ByteLimitValidator::validate(QString& input, int& pos) const
{
    Q_UNUSED(pos);
    return CodePage949::byteLength(input) <= m_maxBytes ? Acceptable : Invalid;
}

} // namespace sable
