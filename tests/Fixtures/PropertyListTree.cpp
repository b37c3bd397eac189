#include "tests/Fixtures/PropertyListTree.h"

#include <optional>
#include <utility>
#include <vector>

#include "Formats/PropertyList.h"

namespace orvane::test {

namespace {

using nlohmann::json;

class TreeMaker final : public PropertyListHandler {
  public:
    TreeMaker() = default;
    TreeMaker(const TreeMaker&) = delete;
    TreeMaker& operator=(const TreeMaker&) = delete;

    void beginArray() override { open_.push_back({json::array(), {}, {}}); }
    void beginDictionary(Repeated repeated) override { open_.push_back({json::object(), repeated, {}}); }
    void endContainer() override {
        auto container = std::move(open_.back().value);
        open_.pop_back();
        add(std::move(container));
    }
    void key(std::string_view key) override { open_.back().key = key; }
    void leaf(const Leaf& leaf) override { std::visit(*this, leaf); }

    void operator()(PropertyListHandler::Other /*value*/) { add(nullptr); }
    template <typename T>
    void operator()(const T& value) {
        add(value);
    }

    /// What was told, once all has been.
    json take() { return *std::move(root_); }

  private:
    struct Container {
        json value;
        Repeated repeated = Repeated::firstCounts;
        std::string key;
    };

    void add(json value) {
        if (open_.empty()) {
            root_ = std::move(value);
        } else if (open_.back().value.is_array()) {
            open_.back().value.push_back(std::move(value));
        } else if (open_.back().repeated == Repeated::firstCounts) {
            open_.back().value.emplace(open_.back().key, std::move(value));
        } else {
            open_.back().value[open_.back().key] = std::move(value);
        }
    }

    std::optional<json> root_;
    std::vector<Container> open_;
};

}  // namespace

std::optional<json> propertyListTree(std::string_view bytes) {
    TreeMaker maker;
    return readPropertyList(bytes, maker) ? std::optional(maker.take()) : std::nullopt;
}

bool isPropertyList(std::string_view bytes) {
    struct : PropertyListHandler {
        void beginArray() override {}
        void beginDictionary(Repeated /*repeated*/) override {}
        void endContainer() override {}
        void key(std::string_view /*key*/) override {}
        void leaf(const Leaf& /*leaf*/) override {}
    } nobody;
    return readPropertyList(bytes, nobody);
}

std::optional<std::string> propertyListText(std::string_view bytes, std::string_view key) {
    std::optional<std::string> text;
    readPropertyListTexts(bytes, {{key, text}});
    return text;
}

std::string repeated(std::string_view piece, std::size_t count) {
    std::string text;
    for (std::size_t i = 0; i < count; ++i) text += piece;
    return text;
}

}  // namespace orvane::test
