// A LandXML surface of 22,000 points: loaded, searched by name, read, and one of 20,000 elements made.
#include <afx.h>

#include "BenchmarkSupport.h"
#include "XmlDom.h"
#include "XmlPeers.h"
#include "helpers/TemporaryFolder.h"
#include "xml/QuonXml.h"
#include "xml/XmlNodes.h"

#include <benchmark/benchmark.h>

#include <memory>
#include <string>

using namespace quon_benchmark;

namespace
{

constexpr wchar_t kPoint[] = L"P";
constexpr wchar_t kId[] = L"id";
constexpr wchar_t kNew[] = L"F";
constexpr const char* kPugi = "pugixml 1.13";
constexpr const char* kRapid = "RapidXML 1.13";
constexpr const char* kBare = "limit: bare DOM calls";
constexpr const char* kBareTexts = "bare DOM calls, texts left as the DOM's own";

std::string MakeSurface(int points)
{
    std::string text =
        "<?xml version=\"1.0\"?>\n<LandXML version=\"1.0\"><Surfaces><Surface name=\"ground\">"
        "<Definition surfType=\"TIN\"><Pnts>\n";
    for (int index = 1; index <= points; ++index)
    {
        text += "<P id=\"" + std::to_string(index) + "\">" + std::to_string(4000 + index * 0.37) + " " +
                std::to_string(7000 + index % 150 * 1.25) + " " + std::to_string(100 + index % 37 * 0.5) + "</P>\n";
    }
    return text + "</Pnts></Definition></Surface></Surfaces></LandXML>\n";
}

struct NodeArrayDeleter
{
    void operator()(QuonNodeArray* nodes) const
    {
        ReleaseNodeArray(nodes);
        delete nodes;
    }
};
using Nodes = std::unique_ptr<QuonNodeArray, NodeArrayDeleter>;
using Texts = std::unique_ptr<CStringArray>;

// The surface in all trees, with the nodes of its points.
struct Surface
{
    quon_test::TemporaryFolder folder;
    std::wstring fileName;
    QuonXml xml{L"", false, false, false};
    Nodes nodes;
    DomNodes bareNodes;
    _variant_t file;
    _bstr_t point{kPoint};
    _bstr_t id{kId};
    Pugi pugi;
    std::vector<Pugi::Node> pugiNodes;
    Rapid rapid;
    std::vector<Rapid::Node> rapidNodes;

    explicit Surface(int size) : fileName(folder.WriteFile(L"surface.xml", MakeSurface(size))), file(fileName.c_str())
    {
        Require(xml.LoadSync(xml.m_pDoc, fileName.c_str()) == 0, "the surface");
        nodes = FindNodes();
        bareNodes = FindByNameBare(xml.m_pDoc, kPoint);
        pugi.Load(fileName);
        pugiNodes = pugi.Find(kPoint);
        rapid.Load(fileName);
        rapidNodes = rapid.Find(kPoint);
    }
    ~Surface() { ReleaseAll(bareNodes); }
    Surface(const Surface&) = delete;
    Surface& operator=(const Surface&) = delete;

    Nodes FindNodes() const { return Nodes(FindNodesByName(GetDocumentChildNodes(xml.m_pDoc), kPoint, true)); }
};

using SharedSurface = std::shared_ptr<Surface>;

std::size_t LengthOf(const Texts& texts)
{
    std::size_t length = 0;
    for (INT_PTR index = 0; index < texts->GetSize(); ++index)
    {
        length += static_cast<std::size_t>((*texts)[index].GetLength());
    }
    return length;
}

template <typename Tree>
std::size_t SumOfTexts(const std::vector<typename Tree::Node>& nodes)
{
    std::size_t sum = 0;
    for (const typename Tree::Node node : nodes)
    {
        sum += Tree::TextLength(node);
    }
    return sum;
}

template <typename Tree>
std::size_t SumOfAttributes(const std::vector<typename Tree::Node>& nodes)
{
    std::size_t sum = 0;
    for (const typename Tree::Node node : nodes)
    {
        sum += Tree::AttributeLength(node, kId);
    }
    return sum;
}

void Check(const SharedSurface& surface, int size)
{
    const auto count = static_cast<std::size_t>(size);
    DomNodes tagged = FindByTagName(surface->xml.m_pDoc, surface->point);
    Require(static_cast<std::size_t>(surface->nodes->GetSize()) == count && surface->bareNodes.size() == count &&
                tagged.size() == count && surface->pugiNodes.size() == count && surface->rapidNodes.size() == count,
            "nodes by name");
    ReleaseAll(tagged);

    const std::size_t texts = LengthOf(Texts(GetTextsOfNodes(surface->nodes.get())));
    Require(texts == GetTextsBare<BareStrings>(surface->bareNodes).Length() &&
                texts == GetTextsBare<BareTexts>(surface->bareNodes).Length() &&
                texts == SumOfTexts<Pugi>(surface->pugiNodes) && texts == SumOfTexts<Rapid>(surface->rapidNodes),
            "texts");

    const std::size_t values = LengthOf(Texts(GetAttributeValuesOfNodes(surface->nodes.get(), kId)));
    Require(values == GetAttributesBare<BareStrings>(surface->bareNodes, surface->id).Length() &&
                values == GetAttributesBare<BareTexts>(surface->bareNodes, surface->id).Length() &&
                values == GetAttributesOfElements<BareStrings>(surface->bareNodes, surface->id).Length() &&
                values == SumOfAttributes<Pugi>(surface->pugiNodes) &&
                values == SumOfAttributes<Rapid>(surface->rapidNodes),
            "attributes");
}

void AddLoad(const SharedSurface& surface, int size)
{
    // Into documents of their own: the nodes of the others are still read.
    const auto xml = std::make_shared<QuonXml>(L"", false, false, false);
    Add("load", size, "quon",
        [surface, xml] { benchmark::DoNotOptimize(xml->LoadSync(xml->m_pDoc, surface->fileName.c_str())); });
    Add("load", size, kBare, [surface, xml] { benchmark::DoNotOptimize(LoadBare(xml->m_pDoc, surface->file)); });
    Add("load", size, kPugi, [surface, pugi = std::make_shared<Pugi>()] { pugi->Load(surface->fileName); });
    Add("load", size, kRapid, [surface, rapid = std::make_shared<Rapid>()] { rapid->Load(surface->fileName); });
}

void AddFind(const SharedSurface& surface, int size)
{
    Add("find by name", size, "quon", [surface] { benchmark::DoNotOptimize(surface->FindNodes()); });
    Add("find by name", size, kBare, [surface] {
        DomNodes found = FindByNameBare(surface->xml.m_pDoc, kPoint);
        ReleaseAll(found);
    });
    Add("find by name", size, "getElementsByTagName", [surface] {
        DomNodes found = FindByTagName(surface->xml.m_pDoc, surface->point);
        ReleaseAll(found);
    });
    Add("find by name", size, kPugi, [surface] { benchmark::DoNotOptimize(surface->pugi.Find(kPoint)); });
    Add("find by name", size, kRapid, [surface] { benchmark::DoNotOptimize(surface->rapid.Find(kPoint)); });
}

void AddRead(const SharedSurface& surface, int size)
{
    Add("read texts", size, "quon",
        [surface] { benchmark::DoNotOptimize(Texts(GetTextsOfNodes(surface->nodes.get()))); });
    Add("read texts", size, kBare,
        [surface] { benchmark::DoNotOptimize(GetTextsBare<BareStrings>(surface->bareNodes)); });
    Add("read texts", size, kBareTexts,
        [surface] { benchmark::DoNotOptimize(GetTextsBare<BareTexts>(surface->bareNodes)); });
    Add("read texts", size, kPugi, [surface] { benchmark::DoNotOptimize(SumOfTexts<Pugi>(surface->pugiNodes)); });
    Add("read texts", size, kRapid, [surface] { benchmark::DoNotOptimize(SumOfTexts<Rapid>(surface->rapidNodes)); });

    Add("read attributes", size, "quon",
        [surface] { benchmark::DoNotOptimize(Texts(GetAttributeValuesOfNodes(surface->nodes.get(), kId))); });
    Add("read attributes", size, kBare,
        [surface] { benchmark::DoNotOptimize(GetAttributesBare<BareStrings>(surface->bareNodes, surface->id)); });
    Add("read attributes", size, kBareTexts,
        [surface] { benchmark::DoNotOptimize(GetAttributesBare<BareTexts>(surface->bareNodes, surface->id)); });
    Add("read attributes", size, "IXMLDOMElement::getAttribute",
        [surface] { benchmark::DoNotOptimize(GetAttributesOfElements<BareStrings>(surface->bareNodes, surface->id)); });
    Add("read attributes", size, kPugi,
        [surface] { benchmark::DoNotOptimize(SumOfAttributes<Pugi>(surface->pugiNodes)); });
    Add("read attributes", size, kRapid,
        [surface] { benchmark::DoNotOptimize(SumOfAttributes<Rapid>(surface->rapidNodes)); });
}

// A document with a root, made anew before each run.
struct Target
{
    QuonXml xml{L"", false, false, false};
    MSXML2::IXMLDOMNodePtr root;
    _bstr_t name{kNew};

    void Prepare()
    {
        root = nullptr;
        xml.CreateDocument();
        AppendElement(root, xml.m_pDoc, xml.m_pDoc, L"LandXML");
    }
};

void CreateElements(Target& target, int count)
{
    const CString name(kNew);
    for (int index = 0; index < count; ++index)
    {
        MSXML2::IXMLDOMNodePtr element;
        AppendElement(element, target.xml.m_pDoc, target.root, name);
    }
}

template <typename Tree>
void AddCreatePeer(int size, const std::string& contender)
{
    const auto tree = std::make_shared<Tree>();
    AddPrepared(
        "create elements", size, contender, [tree] { tree->MakeRoot(L"LandXML"); },
        [tree, size] { tree->Create(kNew, size); });
}

void AddCreate(int size)
{
    const auto target = std::make_shared<Target>();
    target->Prepare();
    CreateElements(*target, size);
    const long made = target->root->GetchildNodes()->Getlength();
    target->Prepare();
    CreateElementsBare(target->xml.m_pDoc, target->root, target->name, size);
    Require(made == size && made == target->root->GetchildNodes()->Getlength(), "created elements");

    AddPrepared(
        "create elements", size, "quon", [target] { target->Prepare(); },
        [target, size] { CreateElements(*target, size); });
    AddPrepared(
        "create elements", size, kBare, [target] { target->Prepare(); },
        [target, size] { CreateElementsBare(target->xml.m_pDoc, target->root, target->name, size); });
    AddCreatePeer<Pugi>(size, kPugi);
    AddCreatePeer<Rapid>(size, kRapid);
}

void AddContenders(const Sizes& sizes)
{
    for (const int size : sizes.UpTo(22000))
    {
        const SharedSurface surface = std::make_shared<Surface>(size);
        Check(surface, size);
        AddLoad(surface, size);
        AddFind(surface, size);
        AddRead(surface, size);
    }
    for (const int size : sizes.UpTo(20000))
    {
        AddCreate(size);
    }
}

}  // namespace

int main(int argc, char** argv)
{
    return Run(argc, argv, &AddContenders);
}
