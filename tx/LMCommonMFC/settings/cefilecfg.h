// SPDX-License-Identifier: MIT
// CEFileCfg: configuration files of two levels. The root's children are sections, their children are values,
// and the text of a value stands in an attribute.
//
//     electrical::CEFileCfg file;
//     if (file.Load(path) && file.SetValor("printer", "paper", "A3")) file.save(path);
//
//     <config>
//       <printer>
//         <paper value="A4"/>
//       </printer>
//     </config>
//
// Neither the root's name nor the attribute's counts; a value should have one attribute, since "the first
// one" is by Qt's own order, which differs from process to process.
#pragma once

#include "export.h"
#include "text/rzstring.h"

#include <QDomDocument>

namespace electrical {

/// A configuration file in memory. It is the document, so all operations of QDomDocument and QDomNode apply.
/// Copies share one tree, and a change through one shows in the other. Failures show in results only: nothing
/// is thrown and nothing is written to the log. An instance belongs to one thread at a time.
class LM_COMMONMFC_API CEFileCfg : public QDomDocument {
public:
    /// An empty document; there are no values before the first Load.
    CEFileCfg();
    CEFileCfg(const CEFileCfg& other);
    CEFileCfg& operator=(const CEFileCfg& other);

    /// Reads the file of a path, white space at its ends apart. False for an empty path, a file that can't be
    /// opened and one that isn't well-formed or has more than 1,000 levels. The tree stays as it was then,
    /// but GetValor and SetValor are shut until a Load succeeds.
    bool Load(RZString path);

    using QDomNode::save;
    /// Writes the tree over the file of a path, indented by 2, whatever Load came to. A document without a
    /// tree makes an empty file. False when the file can't be opened for writing.
    bool save(RZString path);

    /// The section of this exact name, the first of several; a null node when there is none.
    QDomNode GetNodeMain(RZString section);
    /// The child of this exact name, the first of several; a null node when there is none.
    QDomNode GetNode(QDomNode parent, RZString name);

    /// The text of a value: of the first attribute of its element. Empty when the section, the value or the
    /// attribute isn't there, and when the last Load failed. Comes through the narrow code page.
    RZString GetValor(RZString section, RZString key);
    /// Changes the text of a value in memory. Makes nothing new: false when the section or the value isn't
    /// there, or when the last Load failed. True for an element without an attribute as well, though nothing
    /// changes.
    bool SetValor(RZString section, RZString key, RZString value);

private:
    bool IsValid();

    int m_state;
    RZString m_path;
};

} // namespace electrical
