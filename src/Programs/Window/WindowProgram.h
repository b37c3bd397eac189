#pragma once

#include <asio/thread_pool.hpp>
#include <memory>

#include "Programs/ObjectGraph.h"
#include "Views/AboutModel.h"
#include "Views/ContentModel.h"
#include "Views/Icons/IconProvider.h"
#include "Views/QtExecutor.h"
#include "Views/ViewServices.h"

namespace orvane::window {

/// The program's object graph, the view models included. Made and destroyed on the main thread while there is
/// a QGuiApplication.
class WindowProgram {
  public:
    explicit WindowProgram(Machine machine);
    /// Lets a removal that has begun be carried out first.
    ~WindowProgram() { graph_.join(); }
    WindowProgram(const WindowProgram&) = delete;
    WindowProgram& operator=(const WindowProgram&) = delete;

    ContentModel& content() { return content_; }
    AboutModel& about() { return about_; }
    /// Belongs to the caller, and goes before the program does.
    std::unique_ptr<IconProvider> makeIconProvider();

  private:
    ObjectGraph<QtExecutionContext> graph_;
    asio::thread_pool iconPool_;
    ViewServices services_;
    ContentModel content_;
    AboutModel about_;
};

}  // namespace orvane::window
