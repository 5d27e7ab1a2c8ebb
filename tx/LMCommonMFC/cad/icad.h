// SPDX-License-Identifier: MIT
// CICad: the facade over the drawing, through which command modules read what a project holds.
//
//     CICad cad;
//     CEAtributo* tag = nullptr;
//     if (cad.SearchAttributeTag(reference, tag, false) == 0) { ...; delete tag; }
//
// The class has no state: all of it lies in the drawing and in the active document, which each member asks
// for anew. Members without a database work on getDatabase(). All of them belong to the host's thread and
// take no lock.
//
// Result codes of the searches: 0 found, 2 not found, which covers an object that isn't there, is no block
// reference or has no attributes to walk over; 1 only where a member says so. Records and lists that come out
// are new and belong to the caller: releaseAllAttributes, then delete.
#pragma once

#include "cad/cebloco.h"
#include "cad/celistaatributos.h"
#include "export.h"
#include "text/rzid.h"
#include "text/rzstring.h"

#include "drawing/blockreference.h"
#include "drawing/database.h"
#include "drawing/symboltable.h"

#include <list>
#include <map>

/// Reading and, in further members, changing of blocks, attributes, layers, extended data and pages.
///
/// What isn't there is told by the result. An OdError or a standard exception out of SearchAttribute,
/// SearchAttributes, SearchAttributesConst, GetPrompt, getAttPosicaoPto, SearchAttributeVirtual, ExisteBloco
/// and GetNomeBloco, in every form, is written to the log behind the member's name, as in
/// "CICad::GetPrompt : reason", and raised again; members that call each other write a line each. Out of the
/// other members it passes without a line of their own. What was being filled is gone then, but for a block
/// that the caller handed in. An object of another class than the place asks for raises
/// OdError_NotThatKindOfClass.
class LM_COMMONMFC_API CICad {
public:
    CICad() = default;

    // --- Attributes of references ---

    /// Searches an attribute by its tag, ignoring case; the first one in drawing order counts. The record
    /// bears the tag as the caller spells it, the text without white space at both ends, and the definition's
    /// prompt if asked for, which is looked up by the caller's spelling. `atributo` becomes null first.
    int SearchAttribute(RZString tag, OdSmartPtr<OdDbBlockReference> ref, CEAtributo*& atributo,
                        bool comPrompt);
    /// The same for a block reference; any other object is searched for a virtual attribute. Not finding one
    /// leaves `atributo` as it was, so callers of this form begin with null.
    int SearchAttribute(RZString tag, OdSmartPtr<OdDbObject> obj, CEAtributo*& atributo, bool comPrompt);
    int SearchAttribute(RZString tag, RZID id, CEAtributo*& atributo, bool comPrompt);
    /// The value of an attribute, empty when there is none.
    RZString GetValorAtributo(RZString tag, OdSmartPtr<OdDbBlockReference> ref, bool comPrompt);

    /// Searches by role: the names of the role in languages 1, 2 and 3 are tried one after the other, each
    /// over the whole reference, so the order of languages decides and not that of the attributes.
    int SearchAttributeNumber(OdSmartPtr<OdDbBlockReference> ref, CEAtributo*& atributo, bool comPrompt);
    int SearchAttributeNumber(OdSmartPtr<OdDbObject> obj, CEAtributo*& atributo, bool comPrompt);
    int SearchAttributeNumber(RZID id, CEAtributo*& atributo, bool comPrompt);
    int SearchAttributePin(OdSmartPtr<OdDbBlockReference> ref, CEAtributo*& atributo, bool comPrompt);
    int SearchAttributePin(OdSmartPtr<OdDbObject> obj, CEAtributo*& atributo, bool comPrompt);
    int SearchAttributePin(RZID id, CEAtributo*& atributo, bool comPrompt);
    int SearchAttributeStrip(OdSmartPtr<OdDbBlockReference> ref, CEAtributo*& atributo, bool comPrompt);
    int SearchAttributeStrip(OdSmartPtr<OdDbObject> obj, CEAtributo*& atributo, bool comPrompt);
    int SearchAttributeStrip(RZID id, CEAtributo*& atributo, bool comPrompt);
    int SearchAttributeTag(OdSmartPtr<OdDbBlockReference> ref, CEAtributo*& atributo, bool comPrompt);
    int SearchAttributeTag(OdSmartPtr<OdDbObject> obj, CEAtributo*& atributo, bool comPrompt);
    int SearchAttributeTag(RZID id, CEAtributo*& atributo, bool comPrompt);

    /// Reads the attributes of a reference in drawing order, with tag, prompt and value trimmed. `lista`
    /// becomes null first, without being freed. `prefixo` takes only tags that begin with it, case counting.
    /// With `comPrompt` the nth attribute of a tag gets the prompt of the nth definition of that tag, and the
    /// tag where that is empty. With `usarPadrao` an empty value becomes the definition's default, which
    /// takes `comPrompt` to be known.
    int SearchAttributes(OdSmartPtr<OdDbBlockReference> ref, CEListaAtributos*& lista, bool comPrompt,
                         bool usarPadrao, RZString prefixo);
    /// The same for an id; what isn't a block reference gives 2 and leaves `lista` as it was.
    int SearchAttributes(RZID id, CEListaAtributos*& lista, bool comPrompt, bool usarPadrao,
                         RZString prefixo);
    /// The definitions of a block that are not constant, as they stand. A list that `lista` holds is deleted
    /// without its records. Always 0; a null block gives an empty list.
    int SearchAttributes(OdSmartPtr<OdDbBlockTableRecord> btr, CEListaAtributos*& lista);
    /// Adds the attributes of a reference to a block record, tags and values as they stand; of equal tags the
    /// last one stays. Gives `bloco`, or null when either is null.
    CEBloco* SearchAttributes(OdSmartPtr<OdDbBlockReference> ref, CEBloco* bloco);
    /// The constant definitions of the reference's block. A list that `lista` holds is deleted with its
    /// records. Always true; a null reference gives an empty list.
    bool SearchAttributesConst(OdSmartPtr<OdDbBlockReference> ref, CEListaAtributos*& lista);

    /// The prompt of the definition number `indice` (from 0) among those of exactly this tag that are not
    /// constant; the tag itself when there is no such number. `btr` must not be null: OdError.
    RZString GetPrompt(OdSmartPtr<OdDbBlockTableRecord> btr, RZString tag, int indice);
    /// The default text of the first definition of exactly this tag that is not constant; empty without one,
    /// and for a null block.
    RZString GetValue(OdSmartPtr<OdDbBlockTableRecord> btr, RZString tag);

    /// The connection attribute of a list that stands nearest to a point, the earlier one on equal distances;
    /// null when there is none. The record stays the list's. A definition stands at its own place shifted by
    /// the reference's position; what has no place counts as standing at the origin.
    CEAtributo* getAttPosicaoPto(OdSmartPtr<OdDbBlockReference> ref, CEListaAtributos* lista,
                                 OdGePoint3d ponto);

    // --- Virtual attributes: lines of extended data ---

    /// The line of exactly this tag, or null. A line with fewer than three fields gives empty ones.
    CEAtributo* SearchAttributeVirtual(OdSmartPtr<OdDbObject> obj, RZString tag);
    CEAtributo* SearchAttributeVirtual(RZID id, RZString tag);
    /// By role, as above; there is none for the pin.
    CEAtributo* SearchAttributeVirtualNumber(OdSmartPtr<OdDbObject> obj);
    CEAtributo* SearchAttributeVirtualNumber(RZID id);
    CEAtributo* SearchAttributeVirtualStrip(OdSmartPtr<OdDbObject> obj);
    CEAtributo* SearchAttributeVirtualStrip(RZID id);
    CEAtributo* SearchAttributeVirtualTag(OdSmartPtr<OdDbObject> obj);
    CEAtributo* SearchAttributeVirtualTag(RZID id);

    /// The lines of a chain as a new list; what isn't a line of exactly three fields is passed over. Always
    /// 0. An earlier list is overwritten, not freed.
    int SearchAttributesVirtual(OdSmartPtr<OdResBuf> dados, CEListaAtributos*& lista);
    /// The lines of an object; 1 when it can't be opened, and `lista` stays as it was.
    int SearchAttributesVirtual(RZID id, CEListaAtributos*& lista);
    /// Adds the lines of an object to a block record; 1 when the id or the block is null.
    int SearchAttributesVirtual(RZID id, CEBloco* bloco);

    /// The virtual blocks whose name matches a pattern, by the value of their attribute `tagChave`; a later
    /// one with an equal value replaces the earlier. Null when no name matched; a block without the attribute
    /// isn't entered.
    std::map<lm::WideString, CEBloco*>* BuscarBlocosVirtuais(RZString padrao, RZString tagChave);

    // --- Blocks ---

    /// The first reference in model space of the block of exactly this name that stands on exactly this
    /// layer; null without one.
    OdSmartPtr<OdDbBlockReference> BuscarBloco(RZString nome, RZString layer);
    /// The references in model space of all blocks whose name begins as `nome`, a pattern; null when there
    /// are none.
    std::list<CEBloco*>* BuscarBlocos(RZString nome);
    /// The same by the value of the attribute of exactly the tag `tagChave`. References without it are
    /// dropped: null when no reference matched by name, an empty map when none has the attribute.
    std::map<lm::WideString, CEBloco*>* BuscarBlocos(RZString nome, RZString tagChave);
    /// The references in model space whose block name matches an item of a list of patterns separated by ";",
    /// in drawing order, once for each item that matches; null when there are none.
    std::list<CEBloco*>* BuscarBlocos2(RZString nomes);
    /// The references in model space that have an attribute `tag`, ignoring case, of exactly the value
    /// `valor`, with trimmed texts and prompts; null when there are none.
    std::list<CEBloco*>* BuscarBlocos3(RZString tag, RZString valor);
    /// The name of the reference's block; empty for null and for a block that can't be opened.
    CHostString GetNomeBloco(OdSmartPtr<OdDbBlockReference> ref);
    /// Whether a database has a block of exactly this name; `id` receives its id, null without one.
    bool ExisteBloco(RZString nome, RZID& id, OdSmartPtr<OdDbDatabase> db);
    /// Whether a reference, in any owner, of a block whose name matches a pattern stands on one of the
    /// layers; `id` receives the first one and otherwise stays as it was.
    bool ExisteBloco(RZString nome, RZID& id, RZStringList* layers);
    bool ExisteBloco(RZString nome, RZID& id, RZString layer);
    /// Whether the virtual schematic has a component of this tag, ignoring case.
    bool isNoEsqVirtual(RZString tag);

    /// The beginnings of the names of blocks that make up the sheet and are no symbols.
    RZStringList MontarLstBlocosNaoSimbolos();
    /// Whether a name begins with one of them, ignoring case. Nothing is opened; the block needn't exist.
    bool IsBlocoNaoSimbolo(RZString nome);
    bool IsBlocoNaoSimbolo(RZString nome, RZStringList lista);
};
