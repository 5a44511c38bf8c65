#include "xml/XmlDocument.h"

#include "xml/ComHelpers.h"
#include "xml/DomTextInternal.h"
#include "xml/XmlNodes.h"
#include "xml/XmlStatusInternal.h"
#include "xml/XmlValues.h"

#include <io.h>

#include <ctime>

namespace
{

using namespace xml_internal;

// The namespace is spelled in two ways, lower case here and mixed case in the schema location. Readers expect both.
constexpr wchar_t kNamespace[] = L"http://www.landxml.org/schema/landxml-1.0";
constexpr wchar_t kInstanceNamespace[] = L"http://www.w3.org/2001/XMLSchema-instance";
constexpr wchar_t kSchemaLocation[] =
    L"http://www.landxml.org/schema/LandXML-1.0 http://www.landxml.org/schema/LandXML-1.0/LandXML-1.0.xsd";
constexpr wchar_t kRootName[] = L"LandXML";
constexpr wchar_t kNoInstruction[] = L"bXmlInstruction is FALSE!";

CString LoadStep(const CString& fileName, const MSXML2::IXMLDOMDocumentPtr& document)
{
    if (fileName.IsEmpty())
    {
        return L"XMLFullFilename is empty!";
    }
    if (!document)
    {
        return L"pDoc is NULL!";
    }
    VARIANT_BOOL loaded = VARIANT_FALSE;
    const HRESULT result = document->raw_load(_variant_t(fileName.GetString()), &loaded);
    if (FAILED(result))
    {
        return L"Exception on pDoc->raw_load of file:\n" + fileName + L"\n" + FormatHResultText(result);
    }
    return loaded == VARIANT_FALSE ? L"pDoc->load failed!" : kStatusOk;
}

// Appends one instruction. @return whether it was appended; otherwise the status says why not
bool AppendInstruction(const MSXML2::IXMLDOMDocumentPtr& document, const CString& target, const CString& data,
                       CString& status)
{
    if (target.IsEmpty())
    {
        status += L"CurNodeName is empty!";
    }
    if (data.IsEmpty())
    {
        status += L"CurNodeValue is empty!";
    }
    if (target.IsEmpty() || data.IsEmpty())
    {
        return false;
    }
    const MSXML2::IXMLDOMNodePtr created(document->createProcessingInstruction(ToBstr(target), ToBstr(data)));
    if (!created)
    {
        status += L"CreatedAdditionalNode is NULL!";
        return false;
    }
    if (!document->appendChild(created))
    {
        status += L"pAppendedAdditionalNode is empty!";
        return false;
    }
    return true;
}

// Appends all instructions; the messages are added to the status. @return whether the XML declaration is among them
bool AppendInstructions(const MSXML2::IXMLDOMDocumentPtr& document, const CStringArray& instructions, CString& status)
{
    bool declared = false;
    for (INT_PTR i = 0; i < instructions.GetSize(); i += 2)
    {
        if (i + 1 >= instructions.GetSize())
        {
            status += L"InstructionsIndex >= InstructionsSize!";
            break;
        }
        if (AppendInstruction(document, instructions[i], instructions[i + 1], status) && instructions[i] == L"xml")
        {
            declared = true;
        }
    }
    return declared;
}

void SetRootAttribute(const MSXML2::IXMLDOMDocumentPtr& document, const MSXML2::IXMLDOMNodePtr& root,
                      const CString& entry)
{
    const int equals = entry.Find(L'=');
    if (equals < 0)
    {
        return;
    }
    CString name = entry.Left(equals);
    CString value = entry.Mid(equals + 1);
    name.Trim();
    value.Trim();
    if (!name.IsEmpty() && !value.IsEmpty())
    {
        SetAttributeOnNode(document, root, name, value);
    }
}

MSXML2::IXMLDOMNodePtr AppendRoot(const MSXML2::IXMLDOMDocumentPtr& document, const CStringArray& roots)
{
    MSXML2::IXMLDOMNodePtr root;
    if (roots.GetSize() > 0 && !roots[0].IsEmpty())
    {
        const MSXML2::IXMLDOMNodePtr created = document->createElement(ToBstr(roots[0]));
        root = created ? document->appendChild(created) : MSXML2::IXMLDOMNodePtr();
    }
    for (INT_PTR i = 1; root && i < roots.GetSize(); ++i)
    {
        SetRootAttribute(document, root, roots[i]);
    }
    return root;
}

// Both drop the texts that LoadXmlFile and SaveXmlFile throw, on purpose: the status stays what it was before the call.

void LoadExistingFile(const MSXML2::IXMLDOMDocumentPtr& document, const CString& fileName, CString& status)
{
    try
    {
        status = LoadXmlFile(fileName, document) ? CString(kStatusOk) : L"Load failed!\nFile =  " + fileName;
    }
    catch (const CString&)
    {
    }
}

void SaveKeepingStatus(const MSXML2::IXMLDOMDocumentPtr& document, const CString& fileName, CString& status)
{
    try
    {
        status = SaveXmlFile(fileName, document) ? kStatusOk : L"Save() failed!";
    }
    catch (const CString&)
    {
    }
}

// Loads or removes the file that is there already. @return whether the work ends here, with `status` as its result
bool LoadOrRemoveExistingFile(const MSXML2::IXMLDOMDocumentPtr& document, const CString& fileName, bool overwrite,
                              CString& status)
{
    if (!overwrite)
    {
        LoadExistingFile(document, fileName, status);
        return true;
    }
    if (::_wremove(fileName) != 0)
    {
        status = L"Removal of file failed!\nFile = " + fileName;
        return true;
    }
    return false;
}

void WriteSteps(const MSXML2::IXMLDOMDocumentPtr& document, const CString& fileName, const CStringArray& instructions,
                const CStringArray& roots, bool overwrite, MSXML2::IXMLDOMNodePtr& root, CString& status)
{
    if (XmlFileExists(fileName) && LoadOrRemoveExistingFile(document, fileName, overwrite, status))
    {
        return;
    }
    if (!document)
    {
        status = L"pDoc is NULL!";
        return;
    }
    if (!AppendInstructions(document, instructions, status))
    {
        // The status so far stays in front when it reports an incomplete pair; otherwise it is replaced.
        const bool incomplete = instructions.GetSize() % 2 != 0;
        status = incomplete ? status + kNoInstruction : CString(kNoInstruction);
        return;
    }
    root = AppendRoot(document, roots);
    if (!root)
    {
        status = L"pAppendedNode is NULL!";
        return;
    }
    SaveKeepingStatus(document, fileName, status);
}

}  // namespace

MSXML2::IXMLDOMNodePtr AppendNewElement(const MSXML2::IXMLDOMDocumentPtr& document,
                                        const MSXML2::IXMLDOMNodePtr& parent, const CString& name)
{
    const MSXML2::IXMLDOMNodePtr created = document->createElement(ToBstr(name));
    MSXML2::IXMLDOMNodePtr appended;
    if (created)
    {
        MSXML2::IXMLDOMNode* const target = parent ? parent.GetInterfacePtr() : document.GetInterfacePtr();
        // Unlike creating, appending that fails is reported by the empty result.
        target->raw_appendChild(created, &appended);
    }
    return appended;
}

void CreateLandXmlDocument(const MSXML2::IXMLDOMDocumentPtr& document)
{
    const MSXML2::IXMLDOMNodePtr root = AppendNewElement(document, MSXML2::IXMLDOMNodePtr(), kRootName);
    if (!root)
    {
        return;
    }
    const __time64_t now = ::_time64(nullptr);
    SetXmlString(root, L"xmlns", kNamespace);
    SetXmlString(root, L"xmlns:xsi", kInstanceNamespace);
    SetXmlString(root, L"xsi:schemaLocation", kSchemaLocation);
    SetXmlString(root, L"version", L"1.0");
    SetXmlString(root, L"date", FormatLocalTime(now, L"%Y-%m-%d"));
    // With hyphens, not colons: readers of these files know it so.
    SetXmlString(root, L"time", FormatLocalTime(now, L"%H-%M-%S"));
    SetXmlString(root, L"readOnly", L"false");
    SetXmlString(root, L"language", L"English");
}

MSXML2::IXMLDOMNodePtr GetLandXmlRoot(const MSXML2::IXMLDOMDocumentPtr& document)
{
    return document->selectSingleNode(kRootName);
}

bool XmlFileExists(const CString& fileName)
{
    return ::_waccess(fileName, 0) != -1;
}

bool LoadXmlFile(const CString& fileName, const MSXML2::IXMLDOMDocumentPtr& document)
{
    CString status = kStatusFailed;
    try
    {
        status = LoadStep(fileName, document);
    }
    catch (const _com_error& error)
    {
        status = TextOfComError(error);
    }
    catch (const QuonEllipsis&)
    {
        status = kUnhandled;
    }
    ThrowUnlessOk(status);
    return true;
}

bool SaveXmlFile(const CString& fileName, const MSXML2::IXMLDOMDocumentPtr& document)
{
    Require(!fileName.IsEmpty(), L"XMLFullFilename is empty!");
    Require(document, L"pDoc is NULL!");
    const HRESULT result = document->save(_variant_t(fileName.GetString()));
    // A failure has been raised: what is left are success codes, and only S_OK will do.
    ThrowUnlessOk(result == S_OK ? CString(kStatusOk) : FormatHResultText(result));
    return true;
}

MSXML2::IXMLDOMNodePtr WriteXmlFile(const MSXML2::IXMLDOMDocumentPtr& document, const CString& fileName,
                                    const CStringArray& instructions, const CStringArray& roots, bool overwrite)
{
    CString status = kStatusFailed;
    MSXML2::IXMLDOMNodePtr root;
    WriteSteps(document, fileName, instructions, roots, overwrite, root, status);
    ThrowUnlessOk(status);
    return root;
}
