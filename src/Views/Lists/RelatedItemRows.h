#pragma once

#include "Models/RelatedItem.h"
#include "Models/RunningService.h"
#include "Views/Lists/RowListModel.h"

namespace orvane {

/// Rows of related items: key, title (the item's own description, else its file's name), path, kindTitle,
/// symbol, sizeText, requiresAdministrator, reason (a sentence, or nothing while it is not known).
QList<QByteArray> relatedItemRoles();
RowListModel::Row relatedItemRow(const RelatedItem& item, const std::string& reason);

/// Rows of running processes: name, caption.
QList<QByteArray> runningServiceRoles();
RowListModel::Row runningServiceRow(const RunningService& service);

}  // namespace orvane
