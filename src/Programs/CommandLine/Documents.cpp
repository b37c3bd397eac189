#include "Programs/CommandLine/Documents.h"

#include "Formats/CatalogCoding.h"
#include "Text/UTF8.h"

namespace orvane::commandline {
namespace {

Json applicationObject(const InstalledApplication& application) {
    Json object;
    forEachCatalogMember(application, [&](const char* name, const auto& value) { object[name] = value; });
    object["id"] = repairedUTF8(application.id());
    return object;
}

Json itemObject(const RelatedItem& item) {
    Json object{{"id", repairedUTF8(item.id())},
                {"url", item.url.absoluteString()},
                {"kind", rawValue(item.kind)},
                {"size", item.size},
                {"requiresAdministrator", item.requiresAdministrator}};
    if (item.detail) object["detail"] = *item.detail;
    return object;
}

template <typename Range, typename F>
Json arrayOf(const Range& values, F objectOf) {
    auto array = Json::array();
    for (const auto& value : values) array.push_back(objectOf(value));
    return array;
}

}  // namespace

Json listDocument(std::span<const InstalledApplication* const> applications) {
    return arrayOf(applications, [](const auto* application) { return applicationObject(*application); });
}

Json planDocument(const RemovalPlan& plan, const std::vector<std::string>& reasons) {
    auto items = arrayOf(plan.items, itemObject);
    for (std::size_t index = 0; index < reasons.size(); ++index) {
        if (!reasons[index].empty()) items[index]["why"] = repairedUTF8(reasons[index]);
    }
    return {{"application", applicationObject(plan.application)},
            {"items", std::move(items)},
            {"runningServices", arrayOf(plan.runningServices, [](const RunningService& service) {
                 return Json{{"processIdentifier", service.processIdentifier},
                             {"name", service.name},
                             {"executablePath", repairedUTF8(service.executablePath)}};
             })}};
}

Json dryRunDocument(const std::vector<RelatedItem>& items) {
    return {{"items", arrayOf(items, itemObject)}};
}

Json removalDocument(const RemovalResult& result, RemovalMode mode) {
    return {
        {"removed", arrayOf(result.removed, [](const FileURL& url) { return Json(url.absoluteString()); })},
        {"failed",
         arrayOf(
             result.failed,
             [](const RemovalResult::Failure& failure) {
                 return Json{{"url", failure.url.absoluteString()}, {"reason", repairedUTF8(failure.reason)}};
             })},
        {"message", removalMessage(result, mode)}};
}

Json disksDocument(const MacDisks& found) {
    const auto urlOf = [](const std::string& folder) {
        return Json(FileURL::fromPath(folder, true).absoluteString());
    };
    return {
        {"disks", arrayOf(found.disks,
                          [&](const MacDisk& disk) {
                              return Json{
                                  {"root", repairedUTF8(disk.root)},
                                  {"url", urlOf(disk.root)},
                                  {"capacity", disk.capacity},
                                  {"available", disk.available},
                                  {"isReadOnly", disk.isReadOnly},
                                  {"homes", arrayOf(disk.homes, [](const MacHome& home) {
                                       return Json{{"path", repairedUTF8(home.path)}, {"isOwn", home.isOwn}};
                                   })}};
                          })},
        {"silent", arrayOf(found.silent, urlOf)}};
}

}  // namespace orvane::commandline
