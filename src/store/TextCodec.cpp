#include "store/TextCodec.h"

#include <QStringDecoder>

namespace orve::store {

namespace {

// Characters 0x80 to 0x9F of Windows-1252; the rest of the code page is Latin-1.
// The five codes the page leaves undefined keep their own value, as Windows does.
constexpr char16_t kHighControls[32] = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

}  // namespace

QString fromWindows1252(const QByteArray& bytes) {
    QString out(bytes.size(), Qt::Uninitialized);
    QChar* d = out.data();
    for (qsizetype i = 0; i < bytes.size(); ++i) {
        const auto b = static_cast<unsigned char>(bytes[i]);
        d[i] = (b >= 0x80 && b < 0xA0) ? QChar(kHighControls[b - 0x80]) : QChar(b);
    }
    return out;
}

bool isValidUtf8(const QByteArray& bytes) {
    QStringDecoder utf8(QStringConverter::Utf8, QStringConverter::Flag::Stateless);
    // decode() is lazy: the text must be made for the check to happen.
    const QString text = utf8.decode(bytes);
    return !utf8.hasError();
}

}  // namespace orve::store
