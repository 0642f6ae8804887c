#include "support/xmltree.h"

#include <string_view>

int TXmlElement::IndexOf(const char* tag) const
{
    for (size_t i = 0; i < Children.size(); ++i)
        if (Children[i].Tag == tag)
            return static_cast<int>(i);
    return -1;
}

TXmlElement* TXmlElement::Find(const char* tag)
{
    const int at = IndexOf(tag);
    return at == -1 ? nullptr : &Children[static_cast<size_t>(at)];
}

const TXmlElement* TXmlElement::Find(const char* tag) const
{
    const int at = IndexOf(tag);
    return at == -1 ? nullptr : &Children[static_cast<size_t>(at)];
}

std::string TXmlElement::TextOf(const char* tag) const
{
    const TXmlElement* child = Find(tag);
    return child == nullptr ? "" : child->Text;
}

void TXmlElement::Remove(const char* tag)
{
    const int at = IndexOf(tag);
    if (at != -1)
        Children.erase(Children.begin() + at);
}

TXmlElement MakeElement(const std::string& tag, const std::string& text)
{
    TXmlElement element;
    element.Tag = tag;
    element.Text = text;
    return element;
}

namespace {

class TTreeReader
{
public:
    explicit TTreeReader(std::string_view text) : Rest(text) {}
    TXmlElement Read()
    {
        TXmlElement holder;
        ReadContent(holder);
        return holder.Children.empty() ? TXmlElement() : holder.Children.front();
    }

private:
    std::string_view ReadTo(std::string_view end)
    {
        const size_t at = Rest.find(end);
        const std::string_view taken = Rest.substr(0, at);
        Rest.remove_prefix(at == std::string_view::npos ? Rest.size() : at + end.size());
        return taken;
    }
    // Up to the element's closing tag.
    void ReadContent(TXmlElement& element)
    {
        std::string text;
        while (!Rest.empty()) {
            text += ReadTo("<");
            if (Rest.substr(0, 3) == "!--") {
                ReadTo("-->");
                continue;
            }
            const std::string_view tag = ReadTo(">");
            if (tag.empty() || tag.front() == '/')
                break;
            if (tag.front() != '?')
                ReadElement(element, tag);
        }
        if (element.Children.empty())
            element.Text = text;
    }
    void ReadElement(TXmlElement& parent, std::string_view tag)
    {
        TXmlElement element;
        element.IsEmpty = tag.back() == '/';
        if (element.IsEmpty)
            tag.remove_suffix(1);
        const size_t space = tag.find(' ');
        element.Tag = tag.substr(0, space);
        if (space != std::string_view::npos)
            element.Attributes = tag.substr(space);
        if (!element.IsEmpty)
            ReadContent(element);
        parent.Children.push_back(element);
    }

    std::string_view Rest;
};

void Print(const TXmlElement& element, int depth, std::string& out)
{
    const std::string indent(static_cast<size_t>(depth) * 4, ' ');
    out += indent + "<" + element.Tag + element.Attributes;
    if (element.IsEmpty) {
        out += "/>\n";
        return;
    }
    out += ">";
    if (element.Children.empty())
        out += element.Text;
    else {
        out += "\n";
        for (const TXmlElement& child : element.Children)
            Print(child, depth + 1, out);
        out += indent;
    }
    out += "</" + element.Tag + ">\n";
}

} // namespace

TXmlElement ParseXmlTree(const std::string& text)
{
    return TTreeReader(text).Read();
}

std::string PrintXmlTree(const TXmlElement& root)
{
    std::string out = "<?xml version=\"1.0\"?>\n";
    Print(root, 0, out);
    return out;
}
