#include "Views/Lists/RelatedItemRows.h"

#include "Views/DisplayText.h"

namespace orvane {

QList<QByteArray> relatedItemRoles() {
    return {"key", "title", "path", "kindTitle", "symbol", "sizeText", "requiresAdministrator", "reason"};
}

RowListModel::Row relatedItemRow(const RelatedItem& item, const std::string& reason) {
    return {item.id(),
            {keyOfBytes(item.id()), displayText(item.detail.value_or(item.url.lastPathComponent())),
             displayText(item.url.path()), displayText(rawValue(item.kind)), displayText(symbol(item.kind)),
             sizeText(item.size), item.requiresAdministrator, displayText(reason)}};
}

QList<QByteArray> runningServiceRoles() {
    return {"name", "caption"};
}

RowListModel::Row runningServiceRow(const RunningService& service) {
    return {std::to_string(service.id()),
            {displayText(service.name),
             QStringLiteral("Running process • PID %1").arg(service.processIdentifier)}};
}

}  // namespace orvane
