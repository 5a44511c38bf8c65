/// @file
/// Finds, collects, reads and edits nodes of an XML tree.
///
/// Failures: each function works with a status text and throws it as a `CString` when it is not "OK" at the end; the
/// text names the step that failed ("pDoc is NULL!"). Nothing is shown on screen. Failed DOM calls reach the caller as
/// `_com_error` where no text is named for them.
///
/// Arrays: a returned array is new and belongs to the caller, who gives up a node array by `ReleaseNodeArray` and then
/// `delete` (`QuonNodeArrayOwner` of "xml/NodeArray.h" does both), and a string array by `delete`. No array leaks when
/// a function throws.
///
/// Lists: a search puts the cursor of the list that it gets before the first node and moves it from there; the caller's
/// own iteration of that list is lost. Documents may be of any depth.
///
/// Names, texts and values are compared exactly, with case. All calls belong on the thread of the document.
#pragma once

#include <afx.h>
#include <afxcoll.h>
#include <afxtempl.h>

#include "base/Export.h"
#include "xml/Msxml2.h"

/// Nodes, with one reference per entry.
using QuonNodeArray = CTypedPtrArray<CPtrArray, MSXML2::IXMLDOMNode*>;

// Finding and collecting.

/// Releases the entries from the last to the first and empties the array. A null array is left alone.
QUON_API void ReleaseNodeArray(QuonNodeArray* nodes);

/// Returns the child nodes of the document: its root element, instructions, comments. Catches `_com_error` and
/// `QuonEllipsis`: they become status texts.
QUON_API MSXML2::IXMLDOMNodeListPtr GetDocumentChildNodes(const MSXML2::IXMLDOMDocumentPtr& document);

/// Returns the first node of the list with the name; with `recursive` the children of each node that does not match are
/// searched, depth first, before the next one. @return empty when there is none
QUON_API MSXML2::IXMLDOMNodePtr FindFirstNodeByName(const MSXML2::IXMLDOMNodeListPtr& nodes, const CString& name,
                                                    bool recursive);

/// Returns all nodes of the list with the name, in document order; with `recursive` also those below each node of the
/// list, matching or not: the outer one comes first. Catches `_com_error` and `QuonEllipsis`: they become status texts.
QUON_API QuonNodeArray* FindNodesByName(const MSXML2::IXMLDOMNodeListPtr& nodes, const CString& name, bool recursive);

/// Finds as `FindFirstNodeByName` does, but a node whose text equals `text` as well.
QUON_API MSXML2::IXMLDOMNodePtr FindNodeByNameAndText(const MSXML2::IXMLDOMNodeListPtr& nodes, const CString& name,
                                                      const CString& text, bool recursive);

/// Returns the nodes called `childName` anywhere below the first node called `rootName` of the document.
QUON_API QuonNodeArray* GetChildNodesOfRoot(const MSXML2::IXMLDOMDocumentPtr& document, const CString& rootName,
                                            const CString& childName);

/// Appends to `result` each node of the list with the name and an attribute `attribute` that equals `value`. With
/// `recursive` the children of every node of the list, matching or not, are searched the same way.
/// What was appended before a failure stays.
QUON_API void CollectNodesWithAttributes(QuonNodeArray& result, const MSXML2::IXMLDOMNodeListPtr& nodes,
                                         const CString& name, const CString& attribute, const CString& value,
                                         bool recursive);

/// Appends as above for several attributes: `pairs` holds name, value, name, value, ... Pairs with an empty name do not
/// count; all others must match. Without any pair that counts every node with the name is collected. A last name
/// without a value does not count.
QUON_API void CollectNodesWithAttributes(QuonNodeArray& result, const MSXML2::IXMLDOMNodeListPtr& nodes,
                                         const CString& name, const CStringArray& pairs, bool recursive);

/// Appends to `growing` each node of `toAdd`, in order, unless it has a node of the same name and text already. Entries
/// that are null, and those whose name or text cannot be read, are skipped. The appended entry holds a reference of its
/// own: both arrays are released.
QUON_API void AddNodes(QuonNodeArray* growing, const QuonNodeArray* toAdd);

/// Appends as `AddNodes` does, comparing the values of one attribute instead; a node without it has the value "".
QUON_API void AddNodesByAttribute(QuonNodeArray* growing, const QuonNodeArray* toAdd, const CString& attribute);

// Reading.

/// Returns the different names of the children of `node`, or with `recursive` of all nodes below it, in document order.
QUON_API CStringArray* GetNodeNames(const MSXML2::IXMLDOMNodePtr& node, bool recursive);

/// Returns the text of each node of the array. Null entries are skipped; an empty array is a failure.
QUON_API CStringArray* GetTextsOfNodes(const QuonNodeArray* nodes);

/// Returns the value of an attribute for each node of the array, "" for nodes without it. Null entries are skipped; an
/// empty array is a failure.
QUON_API CStringArray* GetAttributeValuesOfNodes(const QuonNodeArray* nodes, const CString& attribute);

/// Returns the value of an attribute; "" for a node that has no such attribute or cannot have any.
QUON_API CString GetAttributeValue(const MSXML2::IXMLDOMNodePtr& node, const CString& attribute);

/// Returns the same as `GetAttributeValue`, but a node that cannot have attributes, an empty name and a value that
/// cannot be read are failures with their own status texts.
QUON_API CString GetAttributeValueByName(const MSXML2::IXMLDOMNodePtr& node, const CString& attribute);

/// Replaces `names` and `values` by those of all attributes of the node. After a failure they hold what was read
/// before.
QUON_API void GetAllAttributes(const MSXML2::IXMLDOMNodePtr& node, CStringArray& names, CStringArray& values);

// Values by path: find a root node anywhere in the document, take the nodes called `childName` anywhere below it, and
// return their texts or the values of one attribute. A status text thrown on the way is passed on after
// "Exception in GetValuesOfAttribute():\n", in all six.

/// Takes as root the first node called `rootName`.
QUON_API CStringArray* GetValuesOfAttribute(const MSXML2::IXMLDOMDocumentPtr& document, const CString& rootName,
                                            const CString& childName, const CString& attribute);
/// Takes as root the first node called `rootName` whose text is `rootText`.
QUON_API CStringArray* GetValuesOfAttributeByRootText(const MSXML2::IXMLDOMDocumentPtr& document,
                                                      const CString& rootName, const CString& childName,
                                                      const CString& rootText, const CString& attribute);
/// Takes as root the first node called `rootName` with the attribute `rootAttribute` of value `rootValue`.
QUON_API CStringArray* GetValuesOfAttributeByRootAttribute(const MSXML2::IXMLDOMDocumentPtr& document,
                                                           const CString& rootName, const CString& childName,
                                                           const CString& rootAttribute, const CString& rootValue,
                                                           const CString& attribute);
/// Takes as root the first node called `rootName`.
QUON_API CStringArray* GetTextsOfChildren(const MSXML2::IXMLDOMDocumentPtr& document, const CString& rootName,
                                          const CString& childName);
/// Takes as root the first node called `rootName` whose text is `rootText`.
QUON_API CStringArray* GetTextsOfChildrenByRootText(const MSXML2::IXMLDOMDocumentPtr& document, const CString& rootName,
                                                    const CString& childName, const CString& rootText);
/// Takes as root the first node called `rootName` with the attribute `rootAttribute` of value `rootValue`.
QUON_API CStringArray* GetTextsOfChildrenByRootAttribute(const MSXML2::IXMLDOMDocumentPtr& document,
                                                         const CString& rootName, const CString& childName,
                                                         const CString& rootAttribute, const CString& rootValue);

// Editing. `result` receives the appended node; a failure leaves it as it was.

/// Creates an element and appends it to `root`.
QUON_API void AppendElement(MSXML2::IXMLDOMNodePtr& result, const MSXML2::IXMLDOMDocumentPtr& document,
                            const MSXML2::IXMLDOMNodePtr& root, const CString& name);
/// Creates a text node and appends it to `root`.
QUON_API void AppendTextChild(MSXML2::IXMLDOMNodePtr& result, const MSXML2::IXMLDOMDocumentPtr& document,
                              const MSXML2::IXMLDOMNodePtr& root, const CString& text);
/// Creates a CDATA section and appends it to `root`.
QUON_API void AppendCDataChild(MSXML2::IXMLDOMNodePtr& result, const MSXML2::IXMLDOMDocumentPtr& document,
                               const MSXML2::IXMLDOMNodePtr& root, const CString& data);
/// Creates a node of any type, with its name and namespace, and appends it to `root`, which must be an element.
QUON_API void AppendNodeOfType(MSXML2::IXMLDOMNodePtr& result, const MSXML2::IXMLDOMDocumentPtr& document,
                               const MSXML2::IXMLDOMNodePtr& root, MSXML2::DOMNodeType type, const CString& name,
                               const CString& namespaceUri);
/// Creates an element and appends it to `root`. @return the appended element
QUON_API MSXML2::IXMLDOMNodePtr AppendNewElementToRoot(const MSXML2::IXMLDOMDocumentPtr& document,
                                                       const MSXML2::IXMLDOMNodePtr& root, const CString& name);
/// Appends a text node to the first node called `rootName`, anywhere in the document, whose attribute `attribute` has
/// the value `value`. @return the new node
QUON_API MSXML2::IXMLDOMNodePtr AppendTextNode(const MSXML2::IXMLDOMDocumentPtr& document, const CString& rootName,
                                               const CString& attribute, const CString& value, const CString& text);

/// Creates or sets an attribute of an element. Catches `_com_error` and `QuonEllipsis`: they become status texts.
/// @return true
QUON_API bool SetAttributeOnNode(const MSXML2::IXMLDOMDocumentPtr& document, const MSXML2::IXMLDOMNodePtr& node,
                                 const CString& name, const CString& value);
/// Creates or sets the attributes `names[i]` to `values[i]`, as far as both arrays reach. @return true
QUON_API bool SetAttributesOnNode(const MSXML2::IXMLDOMDocumentPtr& document, const MSXML2::IXMLDOMNodePtr& node,
                                  const CStringArray& names, const CStringArray& values);
/// Sets attributes as `SetAttributesOnNode` does, with the document that owns the node.
QUON_API bool SetAttributesViaOwnerDocument(const MSXML2::IXMLDOMNodePtr& node, const CStringArray& names,
                                            const CStringArray& values);
