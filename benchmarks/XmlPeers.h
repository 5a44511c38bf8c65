/// @file
/// The same work on an XML document by parsers that have trees of their own. They show what leaving the DOM would give.
#pragma once

#include <afx.h>

#include <fstream>
#include <iterator>
#include <memory>
#include <pugixml.hpp>
#include <rapidxml/rapidxml.hpp>
#include <string>
#include <vector>

namespace quon_benchmark
{

/// pugixml with wide characters.
struct Pugi
{
    using Node = pugi::xml_node;

    pugi::xml_document document;

    void Load(const std::wstring& fileName) { document.load_file(fileName.c_str()); }
    void MakeRoot(const wchar_t* name)
    {
        document.reset();
        document.append_child(name);
    }

    std::vector<Node> Find(const wchar_t* name) const
    {
        std::vector<Node> found;
        Collect(document, name, found);
        return found;
    }
    static std::size_t TextLength(Node node) { return std::wcslen(node.text().get()); }
    static std::size_t AttributeLength(Node node, const wchar_t* name)
    {
        return std::wcslen(node.attribute(name).value());
    }
    void Create(const wchar_t* name, int count)
    {
        Node root = document.first_child();
        for (int index = 0; index < count; ++index)
        {
            root.append_child(name);
        }
    }

private:
    static void Collect(Node parent, const wchar_t* name, std::vector<Node>& found)
    {
        for (const Node node : parent)
        {
            if (std::wcscmp(node.name(), name) == 0)
            {
                found.push_back(node);
            }
            Collect(node, name, found);
        }
    }
};

/// RapidXML with wide characters. It parses a text in place and reads no files: that is done here.
struct Rapid
{
    using Node = const rapidxml::xml_node<wchar_t>*;

    std::vector<wchar_t> text;
    rapidxml::xml_document<wchar_t> document;

    void Load(const std::wstring& fileName)
    {
        document.clear();
        const std::string bytes = Read(fileName);
        const int size = static_cast<int>(bytes.size());
        text.resize(bytes.size() + 1);
        const int length = ::MultiByteToWideChar(CP_UTF8, 0, bytes.data(), size, text.data(), size);
        text[static_cast<std::size_t>(length)] = L'\0';
        document.parse<0>(text.data());
    }
    void MakeRoot(const wchar_t* name)
    {
        document.clear();
        document.append_node(document.allocate_node(rapidxml::node_element, name));
    }

    std::vector<Node> Find(const wchar_t* name) const
    {
        std::vector<Node> found;
        Collect(&document, std::wstring_view(name), found);
        return found;
    }
    static std::size_t TextLength(Node node) { return node->value_size(); }
    static std::size_t AttributeLength(Node node, const wchar_t* name)
    {
        return node->first_attribute(name)->value_size();
    }
    void Create(const wchar_t* name, int count)
    {
        rapidxml::xml_node<wchar_t>* const root = document.first_node();
        for (int index = 0; index < count; ++index)
        {
            root->append_node(document.allocate_node(rapidxml::node_element, name));
        }
    }

private:
    static std::string Read(const std::wstring& fileName)
    {
        const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(::_wfopen(fileName.c_str(), L"rb"), &std::fclose);
        std::string bytes;
        char part[65536];
        while (const std::size_t count = std::fread(part, 1, sizeof(part), file.get()))
        {
            bytes.append(part, count);
        }
        return bytes;
    }

    static void Collect(Node parent, std::wstring_view name, std::vector<Node>& found)
    {
        for (Node node = parent->first_node(); node != nullptr; node = node->next_sibling())
        {
            if (name == std::wstring_view(node->name(), node->name_size()))
            {
                found.push_back(node);
            }
            Collect(node, name, found);
        }
    }
};

}  // namespace quon_benchmark
