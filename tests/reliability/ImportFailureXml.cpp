#include <afx.h>

#include "reliability/ImportFailure.h"

#include <cstdio>

#include "xml/DomFakes.h"
#include "xml/QuonFileStream.h"
#include "xml/QuonXml.h"
#include "xml/XmlDocument.h"
#include "xml/XmlNodes.h"
#include "xml/XmlTestSupport.h"
#include "xml/XmlValues.h"

namespace quon_test::import_failure
{

namespace
{

std::string Hex(HRESULT result)
{
    char text[16];
    std::snprintf(text, sizeof text, "%08lX", static_cast<unsigned long>(result));
    return text;
}

// The stream's own life is by reference count.
std::string UseStream(const Folder& folder, const std::function<std::string(QuonFileStream&)>& use)
{
    ::SetCurrentDirectoryW(folder.Path().c_str());
    auto* const stream = new QuonFileStream;
    const std::string result = use(*stream);
    stream->Release();
    return result;
}

std::string OpenStream(const Folder& folder)
{
    return UseStream(folder, [](QuonFileStream& stream) { return stream.OpenForWrite(L"out") ? "open" : "closed"; });
}

std::string WriteStream(const Folder& folder)
{
    return UseStream(folder, [](QuonFileStream& stream) {
        stream.OpenForWrite(L"out");
        ULONG written = 0;
        return Hex(stream.Write("x", 1, &written));
    });
}

std::string ReadStream(const Folder& folder)
{
    const std::wstring path = folder.File();
    return UseStream(folder, [&path](QuonFileStream& stream) {
        stream.m_hFile = ::CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
        stream.m_bRead = true;
        char byte = 0;
        ULONG read = 0;
        return Hex(stream.Read(&byte, 1, &read));
    });
}

constexpr char kDocument[] = "<r a='7'/>";

std::string LoadFromMemory(const Folder&)
{
    QuonXml xml(L"", false, false, false);
    return Hex(
        xml.LoadFromMemory(xml.GetDocument(), reinterpret_cast<const unsigned char*>(kDocument), sizeof kDocument - 1));
}

std::string SaveToMemory(const Folder&)
{
    QuonXml xml(L"", false, false, false);
    AppendNewElement(xml.GetDocument(), nullptr, L"r");
    unsigned char* buffer = nullptr;
    unsigned long size = 0;
    const HRESULT result = xml.SaveToMemory(xml.GetDocument(), buffer, size);
    delete[] buffer;
    return Hex(result);
}

std::string MakeDocument(const Folder&)
{
    QuonXml xml(L"", false, false, false);
    return xml.GetDocument() ? "document" : "none";
}

template <typename Operation>
std::string ComResult(Operation operation)
{
    try
    {
        return std::to_string(operation());
    }
    catch (const _com_error& error)
    {
        return Hex(error.Error());
    }
}

std::string ReadLong(const Folder&)
{
    const MSXML2::IXMLDOMDocumentPtr document = quon_test::Parse(L"<r a='7'/>");
    const MSXML2::IXMLDOMNodePtr root = quon_test::Find(document, L"r");
    return ComResult([&] { return GetXmlLong(root, L"@a"); });
}

// Waits for a document that is complete when it is asked for the second time, with a message in the queue.
std::string WaitForDocument(const Folder&)
{
    quon_test::ForwardingDocument document(quon_test::Parse(L"<r/>"));
    int asked = 0;
    document.readyState = [&asked] { return ++asked < 2 ? 1 : 4; };
    QuonXml xml(L"", false, false, false);
    ::PostThreadMessageW(::GetCurrentThreadId(), WM_APP, 0, 0);
    ::PostThreadMessageW(::GetCurrentThreadId(), WM_APP, 0, 0);
    xml.WaitUntilLoaded(MSXML2::IXMLDOMDocumentPtr(&document));
    int left = 0;
    MSG message;
    while (::PeekMessageW(&message, nullptr, WM_APP, WM_APP, PM_REMOVE))
    {
        ++left;
    }
    return "asked " + std::to_string(asked) + ", left " + std::to_string(left);
}

std::string DescribeAFailedList(const Folder&)
{
    quon_test::DescribingList list;
    const std::wstring status =
        quon_test::StatusOf([&list] { FindNodesByName(MSXML2::IXMLDOMNodeListPtr(&list), L"a", false); });
    ::SetErrorInfo(0, nullptr);
    return Narrow(status.c_str());
}

}  // namespace

std::vector<Row> XmlRows()
{
    return {
        {"CreateFileA", kMinusOne, "closed", &OpenStream},
        {"WideCharToMultiByte", kZero, "closed", &OpenStream},
        {"WriteFile", kZero, Hex(E_FAIL), &WriteStream},
        {"ReadFile", kZero, Hex(E_FAIL), &ReadStream},
        {"CoInitialize", kFailed, "document", &MakeDocument},
        {"CoCreateInstance", kFailed, "none", &MakeDocument},
        {"CreateStreamOnHGlobal", kNoMemory, Hex(E_OUTOFMEMORY), &LoadFromMemory},
        {"GetHGlobalFromStream", kFailed, Hex(E_FAIL), &SaveToMemory},
        {"GlobalLock", kZero, Hex(HRESULT_FROM_WIN32(ERROR_NOT_ENOUGH_MEMORY)), &SaveToMemory},
        {"GlobalUnlock", kZero, Hex(S_OK), &SaveToMemory},
        {"SysAllocString", kZero, Hex(E_OUTOFMEMORY), &ReadLong},
        {"VariantChangeType", kFailed, Hex(E_FAIL), &ReadLong},
        {"VariantClear", kFailed, "7", &ReadLong},
        {"GetErrorInfo", S_FALSE, "_com_error = No IErrorInfo recorded - Error is undefined!", &DescribeAFailedList},
        {"GetFullPathNameW", kZero, Hex(E_FAIL),
         [](const Folder&) {
             QuonXml xml(L"", false, false, false);
             return Hex(xml.LoadFromUrl(L"file.xml"));
         }},
        // Nothing is dispatched, and the document is asked again.
        {"GetMessageW", kMinusOne, "asked 2, left 0", &WaitForDocument},
        // The queue looks empty.
        {"PeekMessageW", kZero, "asked 2, left 1", &WaitForDocument},
    };
}

}  // namespace quon_test::import_failure
