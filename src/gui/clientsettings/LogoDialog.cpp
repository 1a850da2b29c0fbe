#include "clientsettings/LogoDialog.h"

#include "Messages.h"
#include "widgets/ByteLimitValidator.h"
#include "widgets/Heading.h"
#include "widgets/PlainMessageBox.h"

#include <QApplication>
#include <QButtonGroup>
#include <QDialogButtonBox>
#include <QDir>
#include <QFileDialog>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QStyle>
#include <QVBoxLayout>

namespace sable {
namespace {

constexpr int kPreviewIconSize = 16;

} // namespace

LogoDialog::LogoDialog(const LogoSettings& settings, QWidget* parent)
    : QDialog(parent)
    , m_settings(settings)
{
    setWindowTitle(Msg::kLogoTitle);
    auto* intro = new QLabel(Msg::kLogoIntro, this);
    intro->setWordWrap(true);

    m_defaultIcon = new QRadioButton(Msg::kLogoDefaultIcon, this);
    m_userIcon = new QRadioButton(Msg::kLogoUserIcon, this);
    auto* radios = new QButtonGroup(this);
    radios->addButton(m_defaultIcon, 0);
    radios->addButton(m_userIcon, 1);
    // Read-only, so that every path the clients get has passed the checks of chooseIconFile.
    m_iconPath = new QLineEdit(this);
    m_iconPath->setObjectName(QStringLiteral("iconPath"));
    m_iconPath->setReadOnly(true);
    m_iconPath->setMinimumWidth(260);
    m_browse = new QPushButton(Msg::kLogoBrowse, this);
    m_browse->setObjectName(QStringLiteral("browse"));
    m_caption = new QLineEdit(this);
    m_caption->setObjectName(QStringLiteral("caption"));
    m_caption->setValidator(new ByteLimitValidator(LogoSettings::kMaxCaptionBytes, m_caption));

    auto* fields = new QGridLayout;
    fields->addWidget(makeHeading(Msg::kLogoIconHeading, this), 0, 0, 1, 3);
    fields->addWidget(m_defaultIcon, 1, 0, 1, 3);
    fields->addWidget(m_userIcon, 2, 0, 1, 3);
    fields->addWidget(m_iconPath, 3, 0, 1, 2);
    fields->addWidget(m_browse, 3, 2);
    fields->addWidget(makeHeading(Msg::kLogoCaptionHeading, this), 4, 0, 1, 3);
    fields->addWidget(m_caption, 5, 0);
    fields->addWidget(new QLabel(Msg::kLogoCaptionNote, this), 5, 1, 1, 2);

    auto* buttons = new QDialogButtonBox(this);
    buttons->addButton(Msg::kLogoOk, QDialogButtonBox::AcceptRole)->setDefault(true);
    buttons->addButton(Msg::kLogoCancel, QDialogButtonBox::RejectRole);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(intro);
    layout->addLayout(fields);
    layout->addWidget(createPreview());
    layout->addWidget(buttons);

    const LogoChoice stored = m_settings.read();
    (stored.bDefaultIcon ? m_defaultIcon : m_userIcon)->setChecked(true);
    m_iconPath->setText(stored.iconPath);
    m_caption->setText(stored.caption);
    applyRadioChoice();
    updatePreview();

    connect(m_userIcon, &QRadioButton::toggled, this, &LogoDialog::applyRadioChoice);
    connect(m_browse, &QPushButton::clicked, this, &LogoDialog::browse);
    connect(m_caption, &QLineEdit::textChanged, this, &LogoDialog::updatePreview);
}

LogoChoice LogoDialog::choice() const
{
    return LogoChoice {m_defaultIcon->isChecked(), m_iconPath->text(), m_caption->text()};
}

void LogoDialog::chooseIconFile(const QString& path)
{
    switch (LogoSettings::checkIconFile(path)) {
    case LogoSettings::IconCheck::CannotOpen:
        showPlainMessage(this, Msg::kIconOpenFailed);
        return;
    case LogoSettings::IconCheck::TooLarge:
        showPlainMessage(this, Msg::kIconTooLarge);
        return;
    case LogoSettings::IconCheck::NotAnIcon:
        showPlainMessage(this, Msg::kIconNotAnIcon);
        return;
    case LogoSettings::IconCheck::Accepted:
        m_iconPath->setText(QDir::toNativeSeparators(path));
        updatePreview();
        return;
    }
}

void LogoDialog::browse()
{
    QFileDialog dialog(this, Msg::kIconFileDialogTitle, m_settings.iconFolder(), Msg::kIconFileFilter);
    dialog.setFileMode(QFileDialog::ExistingFile);
    dialog.setAcceptMode(QFileDialog::AcceptOpen);
    dialog.setDefaultSuffix(QStringLiteral("ico"));
    // The caption is proposed as the name: administrators tend to name the icon after it.
    dialog.selectFile(m_caption->text());
    if (dialog.exec() == QDialog::Accepted && !dialog.selectedFiles().isEmpty())
        chooseIconFile(dialog.selectedFiles().constFirst());
}

void LogoDialog::applyRadioChoice()
{
    // The caption field is switched together with the icon fields on purpose; it is saved either way.
    const bool bCustom = m_userIcon->isChecked();
    m_iconPath->setEnabled(bCustom);
    m_browse->setEnabled(bCustom);
    m_caption->setEnabled(bCustom);
    updatePreview();
}

QWidget* LogoDialog::createPreview()
{
    auto* frame = new QWidget(this);
    auto* outer = new QVBoxLayout(frame);
    outer->setContentsMargins(0, 0, 0, 0);
    outer->addWidget(makeHeading(Msg::kLogoPreview, frame));
    // A title bar as the clients draw theirs: icon, then the caption in bold on the accent colour.
    auto* bar = new QWidget(frame);
    bar->setObjectName(QStringLiteral("captionPreview"));
    bar->setAutoFillBackground(true);
    QPalette palette = bar->palette();
    palette.setColor(QPalette::Window, palette.color(QPalette::Highlight));
    palette.setColor(QPalette::WindowText, palette.color(QPalette::HighlightedText));
    bar->setPalette(palette);
    auto* row = new QHBoxLayout(bar);
    row->setContentsMargins(6, 4, 6, 4);
    m_previewIcon = new QLabel(bar);
    m_previewIcon->setObjectName(QStringLiteral("previewIcon"));
    m_previewIcon->setFixedSize(kPreviewIconSize, kPreviewIconSize);
    m_previewCaption = new QLabel(bar);
    m_previewCaption->setObjectName(QStringLiteral("previewCaption"));
    m_previewCaption->setFont(boldFont(m_previewCaption->font()));
    row->addWidget(m_previewIcon);
    row->addWidget(m_previewCaption, 1);
    outer->addWidget(bar);
    return frame;
}

void LogoDialog::updatePreview()
{
    if (!m_previewIcon)
        return;
    const QIcon icon = m_userIcon->isChecked() ? QIcon(m_iconPath->text())
        : !QApplication::windowIcon().isNull() ? QApplication::windowIcon()
                                               : style()->standardIcon(QStyle::SP_ComputerIcon);
    m_previewIcon->setPixmap(icon.pixmap(kPreviewIconSize, kPreviewIconSize));
    m_previewCaption->setText(m_caption->text());
}

} // namespace sable
