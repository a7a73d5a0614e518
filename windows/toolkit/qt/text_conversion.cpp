#include "windows/toolkit/qt/text_conversion.h"

#include <QStringDecoder>
#include <QTextDocument>

#include <algorithm>

namespace pellux {
namespace {

/// One text at a time, in which a mark of the byte order is a character like any other.
constexpr auto k_whole = QStringDecoder::Flag::Stateless | QStringDecoder::Flag::ConvertInitialBom;

/// Bytes of the UTF-8 character at the start of `text`; 0 when there is none.
std::size_t utf8_length(std::string_view text) {
    const auto first = static_cast<unsigned char>(text[0]);
    const std::size_t length = first < 0x80   ? 1
                               : first < 0xC0 ? 0
                               : first < 0xE0 ? 2
                               : first < 0xF0 ? 3
                                              : 4;
    if (length <= 1 || length > text.size())
        return length <= 1 ? length : 0;
    QStringDecoder decoder(QStringDecoder::Utf8, k_whole);
    const QString decoded = decoder(QByteArrayView(text.data(), static_cast<qsizetype>(length)));
    return decoder.hasError() || decoded.isEmpty() ? 0 : length;
}

} // namespace

QString to_qstring(std::string_view text, TextEncoding encoding) {
    const auto size = static_cast<qsizetype>(text.size());
    if (encoding == TextEncoding::latin_1)
        return QString::fromLatin1(text.data(), size);
    QStringDecoder decoder(QStringDecoder::Utf8, k_whole);
    QString whole = decoder(QByteArrayView(text.data(), size));
    if (!decoder.hasError())
        return whole;
    QString mended;
    while (!text.empty()) {
        const auto other = std::ranges::find_if(text, [](char c) { return (c & 0x80) != 0; });
        const auto plain = static_cast<std::size_t>(other - text.begin());
        mended += QLatin1String(text.data(), static_cast<qsizetype>(plain));
        text.remove_prefix(plain);
        if (text.empty())
            break;
        const std::size_t length = utf8_length(text);
        if (length == 0)
            mended += QLatin1Char(text[0]);
        else
            mended += decoder(QByteArrayView(text.data(), static_cast<qsizetype>(length)));
        text.remove_prefix(length == 0 ? 1 : length);
    }
    return mended;
}

QString tip_text(std::string_view text) {
    QString shown = to_qstring(text);
    return Qt::mightBeRichText(shown) ? Qt::convertFromPlainText(shown, Qt::WhiteSpaceNormal)
                                      : shown;
}

String to_text(const QString& text) {
    const QByteArray bytes = text.toUtf8();
    return {bytes.constData(), static_cast<std::size_t>(bytes.size())};
}

} // namespace pellux
