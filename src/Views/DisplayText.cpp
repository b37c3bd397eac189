#include "Views/DisplayText.h"

#include "Models/FileSizeFormatter.h"
#include "Text/UTF8.h"

namespace orvane {

QString displayText(std::string_view bytes) {
    return QString::fromStdString(repairedUTF8(bytes));
}

QString keyOfBytes(std::string_view bytes) {
    return QString::fromLatin1(bytes.data(), static_cast<qsizetype>(bytes.size()));
}

std::string bytesOfKey(const QString& key) {
    return key.toLatin1().toStdString();
}

QString sizeText(std::int64_t byteCount) {
    if (byteCount < 1) return QStringLiteral("—");
    return displayText(FileSizeFormatter::shared().string(byteCount));
}

}  // namespace orvane
