#include "Views/SidebarModel.h"

#include <memory>
#include <utility>

#include "Views/DisplayText.h"
#include "Views/Icons/IconSource.h"

namespace orvane {
namespace {

enum Role : int { key, name, captionText, isInstalled, isSystemApplication, icon, fileName };

QList<QByteArray> applicationRoles() {
    return {"key", "name", "caption", "isInstalled", "isSystemApplication", "iconSource", "fileName"};
}

QString caption(const InstalledApplication& application) {
    if (!application.isInstalled) return QStringLiteral("Not installed");
    return QStringLiteral("Version ") + displayText(application.version) + QStringLiteral(" • ") +
           sizeText(application.size);
}

class ApplicationRows final : public RowListModel::Rows {
  public:
    explicit ApplicationRows(FilteredApplications applications) : applications_(std::move(applications)) {}

    int count() const override { return static_cast<int>(applications_.shown.size()); }
    std::string_view id(int row) const override { return at(row).id(); }
    bool isEqual(int row, const Rows& former, int formerRow) const override {
        const auto& application = at(row);
        const auto& formerOne = static_cast<const ApplicationRows&>(former).at(formerRow);
        return &application == &formerOne || application == formerOne;
    }
    QVariant value(int row, int role) const override {
        const auto& application = at(row);
        switch (role) {
            case Role::key:
                return keyOfBytes(application.id());
            case Role::name:
                return displayText(application.name);
            case Role::captionText:
                return caption(application);
            case Role::isInstalled:
                return application.isInstalled;
            case Role::isSystemApplication:
                return application.isSystemApplication;
            case Role::icon:
                return iconSource(application);
            case Role::fileName:
                return displayText(application.url.lastPathComponent());
            default:
                return {};
        }
    }

  private:
    const InstalledApplication& at(int row) const {
        return *applications_.shown[static_cast<std::size_t>(row)];
    }

    FilteredApplications applications_;
};

}  // namespace

SidebarModel::SidebarModel(const ViewServices& services, QObject* parent)
    : RowListModel(applicationRoles(), parent), services_(services) {
    services_.library->addObserver(*this);
    showApplications();
}

SidebarModel::~SidebarModel() {
    services_.library->removeObserver(*this);
}

void SidebarModel::setSearchText(const QString& text) {
    if (text == searchText_) return;
    searchText_ = text;
    emit searchTextChanged();
    std::string bytes = text.toStdString();
    if (searchTextsUnderway_ == 0 && bytes == services_.library->searchText()) return;
    ++searchTextsUnderway_;
    const auto forward = [this, bytes = std::move(bytes)] {
        --searchTextsUnderway_;
        services_.library->setSearchText(bytes);
    };
    QMetaObject::invokeMethod(this, forward, Qt::QueuedConnection);
}

QString SidebarModel::selectedKey() const {
    return selectedID_ ? keyOfBytes(*selectedID_) : QString();
}

void SidebarModel::setSelectedKey(const QString& key) {
    setSelectedID(key.isEmpty() ? ID() : bytesOfKey(key));
}

void SidebarModel::select(int row) {
    if (row >= 0 && row < rowCount()) setSelectedID(std::string(id(row)));
}

int SidebarModel::rowBeginningWith(const QString& text) const {
    for (int row = 0; row < rowCount(); ++row)
        if (index(row).data(Qt::UserRole + int{Role::name}).toString().startsWith(text, Qt::CaseInsensitive))
            return row;
    return -1;
}

void SidebarModel::setSelectedID(ID id) {
    if (id == selectedID_) return;
    showSelection(id);
    if (selectionsUnderway_ == 0 && id == services_.library->selectedApplicationID()) return;
    ++selectionsUnderway_;
    const auto forward = [this, id = std::move(id)] {
        --selectionsUnderway_;
        services_.library->setSelectedApplicationID(id);
    };
    QMetaObject::invokeMethod(this, forward, Qt::QueuedConnection);
}

QString SidebarModel::countText() const {
    return QString::number(count()) + QStringLiteral(" applications");
}

bool SidebarModel::showsSearchPlaceholder() const {
    return !isScanning() && rowCount() == 0;
}

QString SidebarModel::placeholderTitle() const {
    const std::string& text = services_.library->searchText();
    if (text.empty()) return QStringLiteral("No Results");
    return QStringLiteral("No Results for “") + displayText(text) + QStringLiteral("”");
}

QString SidebarModel::placeholderDescription() const {
    return QStringLiteral("Check the spelling or try a new search.");
}

void SidebarModel::appear() {
    const QString text = displayText(services_.library->searchText());
    if (std::exchange(searchText_, text) != text) emit searchTextChanged();
    showSelection(services_.library->selectedApplicationID());
}

void SidebarModel::rescan() {
    if (isScanning()) return;
    services_.start(&AppLibrary::scan);
}

void SidebarModel::libraryDidChange(AppLibrary::Field field) {
    switch (field) {
        case AppLibrary::Field::applications:
        case AppLibrary::Field::searchText:
            showApplications();
            break;
        case AppLibrary::Field::selectedApplicationID:
            showSelection(services_.library->selectedApplicationID());
            break;
        case AppLibrary::Field::isScanning:
            emit isScanningChanged();
            emit placeholderChanged();
            break;
    }
}

void SidebarModel::showApplications() {
    const int countBefore = count();
    setRows(std::make_unique<ApplicationRows>(services_.library->filteredApplications()));
    if (count() != countBefore) emit countChanged();
    emit placeholderChanged();
    updateSelectedRow();
}

void SidebarModel::showSelection(const ID& id) {
    if (id == selectedID_) return;
    selectedID_ = id;
    emit selectedKeyChanged();
    updateSelectedRow();
}

void SidebarModel::updateSelectedRow() {
    const int row = selectedID_ ? rowOf(*selectedID_) : -1;
    if (std::exchange(selectedRow_, row) != row) emit selectedRowChanged();
}

}  // namespace orvane
