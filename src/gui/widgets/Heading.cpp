#include "widgets/Heading.h"

#include <QLabel>

namespace sable {

QLabel* makeHeading(const QString& text, QWidget* parent)
{
    auto* label = new QLabel(text, parent);
    label->setFont(boldFont(label->font()));
    return label;
}

QFont boldFont(QFont font)
{
    font.setBold(true);
    return font;
}

} // namespace sable
