#include "platform/CodePage949.h"

#include <array>
#include <bitset>
#include <cerrno>
#include <memory>

#ifdef Q_OS_WIN
#include <windows.h>
#else
#include <iconv.h>
#endif

namespace sable::CodePage949 {
namespace {

#ifdef Q_OS_WIN

constexpr unsigned kKoreanCodePage = 949;

bool encodesAsDoubleByte(char16_t unit)
{
    wchar_t wide = static_cast<wchar_t>(unit);
    char out[4];
    BOOL usedDefault = FALSE;
    const int n
        = WideCharToMultiByte(kKoreanCodePage, WC_NO_BEST_FIT_CHARS, &wide, 1, out, sizeof out, nullptr, &usedDefault);
    return n == 2 && !usedDefault;
}

QByteArray convert(const QString& text)
{
    const auto* wide = reinterpret_cast<const wchar_t*>(text.utf16());
    const int n = WideCharToMultiByte(kKoreanCodePage, 0, wide, text.size(), nullptr, 0, nullptr, nullptr);
    QByteArray out(n, Qt::Uninitialized);
    WideCharToMultiByte(kKoreanCodePage, 0, wide, text.size(), out.data(), n, nullptr, nullptr);
    return out;
}

std::optional<QString> convertBack(const QByteArray& bytes)
{
    const int n
        = MultiByteToWideChar(kKoreanCodePage, MB_ERR_INVALID_CHARS, bytes.constData(), bytes.size(), nullptr, 0);
    if (n == 0 && !bytes.isEmpty())
        return std::nullopt;
    QString out(n, Qt::Uninitialized);
    MultiByteToWideChar(kKoreanCodePage, 0, bytes.constData(), bytes.size(), reinterpret_cast<wchar_t*>(out.data()), n);
    return out;
}

#else

struct IconvCloser
{
    void operator()(iconv_t cd) const { iconv_close(cd); }
};
using IconvHandle = std::unique_ptr<std::remove_pointer_t<iconv_t>, IconvCloser>;

IconvHandle openConverter(const char* to, const char* from)
{
    iconv_t cd = iconv_open(to, from);
    return IconvHandle(cd == reinterpret_cast<iconv_t>(-1) ? nullptr : cd);
}

// Runs one whole conversion; nullopt on the first byte sequence that the target cannot take.
std::optional<QByteArray> runIconv(iconv_t cd, const QByteArray& in)
{
    QByteArray out(in.size() * 2 + 8, Qt::Uninitialized);
    char* src = const_cast<char*>(in.constData());
    size_t srcLeft = static_cast<size_t>(in.size());
    char* dst = out.data();
    size_t dstLeft = static_cast<size_t>(out.size());
    while (srcLeft > 0) {
        if (iconv(cd, &src, &srcLeft, &dst, &dstLeft) != static_cast<size_t>(-1))
            continue;
        if (errno != E2BIG)
            return std::nullopt;
        const auto used = out.size() - static_cast<qsizetype>(dstLeft);
        out.resize(out.size() * 2);
        dst = out.data() + used;
        dstLeft = static_cast<size_t>(out.size() - used);
    }
    out.resize(out.size() - static_cast<qsizetype>(dstLeft));
    return out;
}

bool encodesAsDoubleByte(char16_t unit)
{
    thread_local IconvHandle cd = openConverter("CP949", "UTF-16LE");
    if (!cd)
        return false;
    iconv(cd.get(), nullptr, nullptr, nullptr, nullptr);
    const char in[2] = {static_cast<char>(unit & 0xFF), static_cast<char>(unit >> 8)};
    const auto out = runIconv(cd.get(), QByteArray(in, 2));
    return out && out->size() == 2;
}

QByteArray convert(const QString& text)
{
    QByteArray out;
    out.reserve(text.size() * 2);
    IconvHandle cd = openConverter("CP949", "UTF-8");
    for (const QChar ch : text) {
        const auto piece = cd ? runIconv(cd.get(), QString(ch).toUtf8()) : std::nullopt;
        out += piece ? *piece : QByteArray("?");
    }
    return out;
}

std::optional<QString> convertBack(const QByteArray& bytes)
{
    IconvHandle cd = openConverter("UTF-8", "CP949");
    if (!cd)
        return std::nullopt;
    const auto out = runIconv(cd.get(), bytes);
    if (!out)
        return std::nullopt;
    return QString::fromUtf8(*out);
}

#endif

// One bit per BMP code unit: does the code page hold it as a double-byte character? Built once; a
// lookup is then as cheap as counting ASCII, which matters when a whole chart is checked.
const std::bitset<0x10000>& doubleByteTable()
{
    static const auto table = [] {
        auto bits = std::make_unique<std::bitset<0x10000>>();
        for (unsigned unit = 0x80; unit < 0x10000; ++unit) {
            if (unit >= 0xD800 && unit < 0xE000)
                continue;
            if (encodesAsDoubleByte(static_cast<char16_t>(unit)))
                bits->set(unit);
        }
        return bits;
    }();
    return *table;
}

} // namespace

int charByteLength(char32_t codePoint)
{
    if (codePoint < 0x80 || codePoint >= 0x10000)
        return 1;
    return doubleByteTable().test(codePoint) ? 2 : 1;
}

int byteLength(QStringView text)
{
    int bytes = 0;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar ch = text[i];
        if (ch.isHighSurrogate() && i + 1 < text.size() && text[i + 1].isLowSurrogate()) {
            ++i;
            bytes += 1;
            continue;
        }
        bytes += charByteLength(ch.unicode());
    }
    return bytes;
}

QString truncated(const QString& text, int maxBytes)
{
    int bytes = 0;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const bool pair = text[i].isHighSurrogate() && i + 1 < text.size() && text[i + 1].isLowSurrogate();
        const int width = pair ? 1 : charByteLength(text[i].unicode());
        if (bytes + width > maxBytes)
            return text.left(i);
        bytes += width;
        if (pair)
            ++i;
    }
    return text;
}

std::optional<QString> decode(const QByteArray& bytes)
{
    return convertBack(bytes);
}

QByteArray encode(const QString& text)
{
    return convert(text);
}

} // namespace sable::CodePage949
