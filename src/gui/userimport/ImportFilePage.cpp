#include "userimport/ImportFilePage.h"

#include "Messages.h"
#include "userimport/ImportWizard.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

namespace sable {
namespace {

constexpr FileEncoding kEncodings[] = {FileEncoding::Utf8, FileEncoding::Cp949, FileEncoding::Utf16};
constexpr char16_t kDelimiters[] = {u',', u'\t'};

QString encodingLabel(FileEncoding encoding)
{
    return encoding == FileEncoding::Cp949 ? Msg::kImportEncodingCp949 : FileText::encodingName(encoding);
}

QString delimiterLabel(QChar delimiter)
{
    return delimiter == u'\t' ? Msg::kImportTab : Msg::kImportComma;
}

} // namespace

ImportFilePage::ImportFilePage(ImportWizard& wizard)
    : m_wizard(wizard)
    , m_path(new QLineEdit(this))
    , m_encoding(new QComboBox(this))
    , m_delimiter(new QComboBox(this))
    , m_header(new QCheckBox(Msg::kImportHeaderCheck, this))
    , m_status(new QLabel(this))
{
    setTitle(Msg::kImportFilePageTitle);
    setSubTitle(Msg::kImportFilePageText);
    m_path->setObjectName(QStringLiteral("path"));
    m_encoding->setObjectName(QStringLiteral("encoding"));
    m_delimiter->setObjectName(QStringLiteral("delimiter"));
    m_header->setObjectName(QStringLiteral("header"));
    m_status->setObjectName(QStringLiteral("status"));
    m_status->setWordWrap(true);
    m_header->setChecked(true);

    m_encoding->addItem(Msg::kImportDetected.arg(QString()));
    for (const FileEncoding encoding : kEncodings)
        m_encoding->addItem(encodingLabel(encoding));
    m_delimiter->addItem(Msg::kImportDetected.arg(QString()));
    for (const char16_t delimiter : kDelimiters)
        m_delimiter->addItem(delimiterLabel(QChar(delimiter)));

    auto* browseButton = new QPushButton(Msg::kImportBrowse, this);
    auto* pathRow = new QHBoxLayout;
    pathRow->addWidget(m_path, 1);
    pathRow->addWidget(browseButton);
    auto* form = new QFormLayout(this);
    form->addRow(Msg::kImportFileLabel, pathRow);
    form->addRow(Msg::kImportEncodingLabel, m_encoding);
    form->addRow(Msg::kImportDelimiterLabel, m_delimiter);
    form->addRow(m_header);
    form->addRow(m_status);

    connect(browseButton, &QPushButton::clicked, this, &ImportFilePage::browse);
    connect(m_path, &QLineEdit::editingFinished, this, &ImportFilePage::loadFile);
    // A typed path is taken as soon as it names a file, so that Next is offered without leaving the field.
    connect(m_path, &QLineEdit::textChanged, this, &ImportFilePage::pathEdited);
    connect(m_encoding, &QComboBox::currentIndexChanged, this, &ImportFilePage::readTable);
    connect(m_delimiter, &QComboBox::currentIndexChanged, this, &ImportFilePage::readTable);
    connect(m_header, &QCheckBox::toggled, this, &ImportFilePage::readTable);
}

void ImportFilePage::setFilePath(const QString& path)
{
    m_path->setText(path);
    loadFile();
}

void ImportFilePage::setEncodingChoice(int index)
{
    m_encoding->setCurrentIndex(index);
}

void ImportFilePage::setDelimiterChoice(int index)
{
    m_delimiter->setCurrentIndex(index);
}

void ImportFilePage::setHeader(bool bHeader)
{
    m_header->setChecked(bHeader);
}

QString ImportFilePage::statusText() const
{
    return m_status->text();
}

bool ImportFilePage::isComplete() const
{
    return m_wizard.table().has_value();
}

void ImportFilePage::browse()
{
    const QString start = m_path->text().isEmpty() ? QDir::homePath() : QFileInfo(m_path->text()).absolutePath();
    const QString chosen
        = QFileDialog::getOpenFileName(this, Msg::kImportFileDialogTitle, start, Msg::kImportFileFilter);
    if (!chosen.isEmpty())
        setFilePath(QDir::toNativeSeparators(chosen));
}

void ImportFilePage::pathEdited(const QString& text)
{
    if (QFileInfo(text.trimmed()).isFile()) {
        loadFile();
    } else if (m_bLoaded) {
        m_bLoaded = false;
        m_loadedPath.clear();
        m_wizard.setTable(std::nullopt);
        m_status->clear();
        Q_EMIT completeChanged();
    }
}

void ImportFilePage::loadFile()
{
    const QString path = m_path->text().trimmed();
    if (path == m_loadedPath && m_bLoaded)
        return;
    m_loadedPath = path;
    QString problem;
    std::optional<QByteArray> bytes = path.isEmpty() ? std::nullopt : ImportTableReader::load(path, &problem);
    m_bLoaded = bytes.has_value();
    m_bytes = bytes.value_or(QByteArray());
    if (!m_bLoaded) {
        m_wizard.setTable(std::nullopt);
        m_status->setText(problem);
        Q_EMIT completeChanged();
        return;
    }
    readTable();
}

void ImportFilePage::readTable()
{
    if (!m_bLoaded)
        return;
    ImportReadOptions options;
    if (m_encoding->currentIndex() > 0)
        options.encoding = kEncodings[m_encoding->currentIndex() - 1];
    if (m_delimiter->currentIndex() > 0)
        options.delimiter = QChar(kDelimiters[m_delimiter->currentIndex() - 1]);
    options.bHeader = m_header->isChecked();
    QString problem;
    std::optional<ImportTable> table = ImportTableReader::read(m_bytes, options, &problem);
    // The detected choices show what detection found.
    m_encoding->setItemText(0, Msg::kImportDetected.arg(encodingLabel(FileText::detect(m_bytes))));
    if (table && !options.delimiter)
        m_delimiter->setItemText(0, Msg::kImportDetected.arg(delimiterLabel(table->delimiter)));
    m_status->setText(table ? Msg::kImportFileRead.arg(table->columns.size()).arg(table->rows.size()) : problem);
    m_wizard.setTable(std::move(table));
    Q_EMIT completeChanged();
}

} // namespace sable
