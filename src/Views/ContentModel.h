#pragma once

#include <QtQml/qqmlregistration.h>
#include <QtCore/QObject>
#include <QtCore/QPointer>
#include <memory>

#include "Services/AppLibrary.h"
#include "Views/DetailModel.h"
#include "Views/SidebarModel.h"
#include "Views/ViewServices.h"

namespace orvane {

/// The whole main window: the sidebar, and the detail pane of the selected application. On the main thread.
class ContentModel : public QObject, private AppLibrary::Observer {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made by the program")

    Q_PROPERTY(orvane::SidebarModel* sidebar READ sidebar CONSTANT)
    /// Null while no application is selected. Another application has another object; one and the same keeps
    /// its object when what is known of it changes. While its sheet is shown, or can still be seen, it stays,
    /// whatever is selected.
    Q_PROPERTY(orvane::DetailModel* detail READ detail NOTIFY detailChanged)

  public:
    /// `services` outlives it.
    explicit ContentModel(const ViewServices& services, QObject* parent = nullptr);
    ~ContentModel() override;

    SidebarModel* sidebar() { return &sidebar_; }
    DetailModel* detail() const { return detail_; }

    /// A window appears, or is about to: loads the catalog, if the library holds nothing yet.
    Q_INVOKABLE void load();
    /// Starts a scan, also beside one that is running.
    Q_INVOKABLE void rescan();

  signals:
    void detailChanged();

  private:
    static Task<void> load(QPointer<ContentModel> content, std::shared_ptr<AppLibrary> library);
    void libraryDidChange(AppLibrary::Field field) override;
    void showSelectedApplication();

    const ViewServices& services_;
    bool isLoading_ = false;
    SidebarModel sidebar_;
    DetailModel* detail_ = nullptr;
};

}  // namespace orvane
