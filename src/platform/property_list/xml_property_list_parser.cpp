#include "platform/property_list/xml_property_list_parser.h"

#include <array>
#include <utility>

#include "platform/property_list/xml_property_list_scalars.h"

namespace corvane {

namespace {

using Element = XmlPropertyListElement;
using Node = XmlPropertyListNode;

constexpr std::string_view spaces = " \t\r\n";
constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
constexpr std::string_view documentElement = "plist";

constexpr std::array<std::pair<std::string_view, Element>, 10> elementNames = {
    {{"dict", Element::Dictionary},
     {"array", Element::Array},
     {"key", Element::Key},
     {"string", Element::String},
     {"integer", Element::Integer},
     {"real", Element::Real},
     {"date", Element::Date},
     {"data", Element::Data},
     {"true", Element::TrueValue},
     {"false", Element::FalseValue}}};

std::optional<Element> elementNamed(std::string_view name) {
    for (const auto& [known, element] : elementNames) {
        if (name == known)
            return element;
    }
    return std::nullopt;
}

bool isContainer(Element element) {
    return element == Element::Dictionary || element == Element::Array;
}

/// Open elements are kept on a list of our own, so that nesting costs no stack.
class Parser {
  public:
    explicit Parser(std::string_view text) : text_(text) {}

    std::optional<XmlPropertyListNodes> parse() {
        if (rest().starts_with(byteOrderMark))
            position_ += byteOrderMark.size();
        while (skipSpaces()) {
            if (!parseMarkup())
                return std::nullopt;
        }
        if (!open_.empty() || isDocumentOpen_ || pending_.size() != 1)
            return std::nullopt;
        return std::move(result_);
    }

  private:
    struct OpenContainer {
        Element element;
        std::uint32_t firstChild;  ///< in pending_
    };

    struct Tag {
        std::string_view name;
        bool isEmptyElement;
    };

    std::string_view rest() const { return text_.substr(position_); }

    /// False at the end of the text.
    bool skipSpaces() {
        position_ = text_.find_first_not_of(spaces, position_);
        return position_ < text_.size();
    }

    bool skipPast(std::string_view end) {
        const std::size_t found = text_.find(end, position_);
        if (found == std::string_view::npos)
            return false;
        position_ = found + end.size();
        return true;
    }

    bool parseMarkup() {
        if (rest().starts_with("<!--")) {
            position_ += 4;
            return skipPast("-->");
        }
        if (rest().starts_with("<?"))
            return skipPast("?>");
        if (rest().starts_with("<!DOCTYPE"))
            return skipDocumentType();
        if (rest().starts_with("</"))
            return closeElement();
        return rest().starts_with("<") && openElement();
    }

    bool skipDocumentType() {
        if (hasDocument_ || !open_.empty() || !pending_.empty())
            return false;
        bool isInSubset = false;
        while (position_ < text_.size()) {
            const char character = text_[position_];
            if (rest().starts_with("<!--")) {
                position_ += 4;
                if (!skipPast("-->"))
                    return false;
                continue;
            }
            ++position_;
            if (character == '"' || character == '\'') {
                if (!skipPast(std::string_view(&character, 1)))
                    return false;
            } else if (character == '[') {
                isInSubset = true;
            } else if (character == ']') {
                isInSubset = false;
            } else if (character == '>' && !isInSubset) {
                return true;
            }
        }
        return false;
    }

    /// Takes a tag up to its ">", `position_` being on its name. Attributes are passed over.
    std::optional<Tag> takeTag() {
        const std::size_t nameEnd = text_.find_first_of(" \t\r\n/>", position_);
        if (nameEnd == std::string_view::npos)
            return std::nullopt;
        const std::string_view name = text_.substr(position_, nameEnd - position_);
        position_ = nameEnd;
        bool isEmptyElement = false;
        while (position_ < text_.size()) {
            const char character = text_[position_++];
            if (character == '>')
                return Tag{name, isEmptyElement};
            if (character == '<')
                return std::nullopt;
            if ((character == '"' || character == '\'') && !skipPast(std::string_view(&character, 1)))
                return std::nullopt;
            isEmptyElement = character == '/';
        }
        return std::nullopt;
    }

    bool openElement() {
        ++position_;
        const std::optional<Tag> tag = takeTag();
        if (!tag)
            return false;
        if (tag->name == documentElement)
            return openDocument(*tag);
        const std::optional<Element> element = elementNamed(tag->name);
        if (!element)
            return false;
        if (tag->isEmptyElement)
            return addNode({*element, here(), 0});
        if (!isContainer(*element))
            return addScalar(*element, tag->name);
        if (open_.size() >= maximumXmlPropertyListElements)
            return false;
        open_.push_back({*element, static_cast<std::uint32_t>(pending_.size())});
        return true;
    }

    bool openDocument(const Tag& tag) {
        if (tag.isEmptyElement || hasDocument_ || !open_.empty() || !pending_.empty())
            return false;
        hasDocument_ = true;
        isDocumentOpen_ = true;
        return true;
    }

    bool closeElement() {
        position_ += 2;
        const std::optional<Tag> tag = takeTag();
        if (!tag || tag->isEmptyElement)
            return false;
        if (tag->name == documentElement) {
            const bool isEnd = isDocumentOpen_ && open_.empty();
            isDocumentOpen_ = false;
            return isEnd;
        }
        if (open_.empty() || elementNamed(tag->name) != open_.back().element)
            return false;
        const OpenContainer container = open_.back();
        open_.pop_back();
        return addContainer(container);
    }

    bool addContainer(const OpenContainer& container) {
        const auto first = pending_.begin() + container.firstChild;
        const auto count = static_cast<std::uint32_t>(pending_.end() - first);
        if (container.element == Element::Dictionary) {
            if (count % 2 != 0)
                return false;
            if (const std::optional<Node> uid = asUid(container.firstChild, count)) {
                pending_.erase(first, pending_.end());
                return addNode(*uid);
            }
        }
        const auto begin = static_cast<std::uint32_t>(result_.children.size());
        result_.children.insert(result_.children.end(), first, pending_.end());
        pending_.erase(first, pending_.end());
        return addNode({container.element, begin, count});
    }

    std::optional<Node> asUid(std::size_t firstChild, std::size_t count) const {
        if (count != 2)
            return std::nullopt;
        const Node& key = result_.nodes[pending_[firstChild]];
        const Node& value = result_.nodes[pending_[firstChild + 1]];
        if (content(key) != "CF$UID" || value.element != Element::Integer)
            return std::nullopt;
        const std::optional<PropertyListObject> number = xmlInteger(content(value));
        const std::int64_t* index = number ? std::get_if<std::int64_t>(&*number) : nullptr;
        if (index == nullptr || *index < 0)
            return std::nullopt;
        return Node{Element::Uid, value.begin, value.size};
    }

    std::string_view content(const Node& node) const { return text_.substr(node.begin, node.size); }

    bool addScalar(Element element, std::string_view name) {
        const std::uint32_t begin = here();
        while (true) {
            position_ = text_.find('<', position_);
            if (position_ == std::string_view::npos)
                return false;
            if (rest().starts_with("</"))
                break;
            if (!skipInContent())
                return false;
        }
        const std::uint32_t size = here() - begin;
        position_ += 2;
        const std::optional<Tag> tag = takeTag();
        if (!tag || tag->isEmptyElement || tag->name != name)
            return false;
        return addNode({element, begin, size});
    }

    /// A scalar holds text, CDATA sections and comments, no elements.
    bool skipInContent() {
        if (rest().starts_with("<![CDATA["))
            return skipPast("]]>");
        if (!rest().starts_with("<!--"))
            return false;
        position_ += 4;
        return skipPast("-->");
    }

    bool addNode(const Node& node) {
        if (result_.nodes.size() >= maximumXmlPropertyListElements || !isExpected(node.element))
            return false;
        pending_.push_back(static_cast<std::uint32_t>(result_.nodes.size()));
        result_.nodes.push_back(node);
        return true;
    }

    bool isExpected(Element element) const {
        const bool isKey = element == Element::Key;
        if (open_.empty())
            return !isKey && pending_.empty() && (isDocumentOpen_ || !hasDocument_);
        if (open_.back().element == Element::Array)
            return !isKey;
        const bool isKeyPosition = (pending_.size() - open_.back().firstChild) % 2 == 0;
        return isKey == isKeyPosition;
    }

    std::uint32_t here() const { return static_cast<std::uint32_t>(position_); }

    std::string_view text_;
    std::size_t position_ = 0;
    bool hasDocument_ = false;
    bool isDocumentOpen_ = false;
    std::vector<OpenContainer> open_;
    std::vector<std::uint32_t> pending_;  ///< nodes whose container is still open
    XmlPropertyListNodes result_;
};

}  // namespace

std::optional<XmlPropertyListNodes> parseXmlPropertyList(std::string_view text) {
    return Parser(text).parse();
}

}  // namespace corvane
