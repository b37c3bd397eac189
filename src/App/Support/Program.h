#pragma once

#include <asio/thread_pool.hpp>
#include <memory>

#include "Platform/Machine.h"
#include "Services/AppLibrary.h"
#include "Services/ApplicationCatalog.h"
#include "Services/ApplicationScanner.h"
#include "Views/AboutModel.h"
#include "Views/ContentModel.h"
#include "Views/Support/IconProvider.h"
#include "Views/Support/QtExecutor.h"
#include "Views/Support/ViewServices.h"

namespace orvane::app {

/// The program's object graph. Made and destroyed on the main thread while there is a QGuiApplication; its
/// end waits for what is under way on the pool, so that a removal that has begun is carried out.
class Program {
  public:
    explicit Program(Machine machine);
    ~Program();
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;

    ContentModel& content() { return content_; }
    AboutModel& about() { return about_; }
    /// Belongs to the caller, and goes before the program does.
    std::unique_ptr<IconProvider> makeIconProvider();

  private:
    ViewServices services();

    Machine machine_;
    asio::thread_pool pool_;
    asio::thread_pool iconPool_;
    QtExecutionContext main_;
    ApplicationScanner scanner_;
    ApplicationCatalog catalog_;
    std::shared_ptr<AppLibrary> library_;
    ViewServices services_;
    ContentModel content_;
    AboutModel about_;
};

}  // namespace orvane::app
