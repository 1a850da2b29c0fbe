#pragma once

#include <QValidator>

namespace sable {

// Refuses any edit that would make the text longer than a number of bytes in the Korean code page,
// so a field stops taking input at the limit the server stores, whatever mix of Hangul and ASCII
// is typed.
class ByteLimitValidator final : public QValidator
{
    Q_OBJECT

public:
    explicit ByteLimitValidator(int maxBytes, QObject* parent = nullptr);

    State validate(QString& input, int& pos) const override;

private:
    int m_maxBytes;
};

} // namespace sable
