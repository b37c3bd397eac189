#include "Views/Icons/IconSource.h"

#include <QtCore/QByteArray>

namespace orvane {
namespace {

const QString prefix = QStringLiteral("bundle/");
// In this form a path of any bytes gets through a URL's decoding and normalizing unharmed.
constexpr auto base64Options = QByteArray::Base64UrlEncoding | QByteArray::OmitTrailingEquals;

}  // namespace

QString iconSource(const InstalledApplication& application) {
    const auto path = application.url.fileSystemPath();
    if (!application.isInstalled || !path) return QStringLiteral("image://icons/generic");
    const QByteArray bytes(path->data(), static_cast<qsizetype>(path->size()));
    const double modified =
        application.modifiedAt ? application.modifiedAt->timeIntervalSinceReferenceDate : 0;
    return QStringLiteral("image://icons/") + prefix + QString::fromLatin1(bytes.toBase64(base64Options)) +
           QLatin1Char('?') + QString::number(modified, 'g', 17);
}

std::optional<std::string> bundlePathOfIcon(const QString& id) {
    if (!id.startsWith(prefix)) return std::nullopt;
    const QString encoded = id.mid(prefix.size()).section(QLatin1Char('?'), 0, 0);
    auto path = QByteArray::fromBase64Encoding(encoded.toLatin1(),
                                               base64Options | QByteArray::AbortOnBase64DecodingErrors);
    if (!path) return std::nullopt;
    return path.decoded.toStdString();
}

}  // namespace orvane
