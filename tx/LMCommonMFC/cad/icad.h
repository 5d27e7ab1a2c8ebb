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
#include "drawing/dictionary.h"
#include "drawing/idmapping.h"
#include "drawing/symboltable.h"

#include <list>
#include <map>
#include <vector>

class CHostDatabase;
class CHostDocument;

/// Reading and changing of what a project keeps in its drawing: blocks and attributes, variables of the
/// document, extended data, dictionaries and layers.
///
/// What isn't there is told by the result. Members that report, in every form of theirs:
///   attributes   SearchAttribute, SearchAttributes, SearchAttributesConst, GetPrompt, getAttPosicaoPto,
///                SearchAttributeVirtual
///   blocks       ExisteBloco, GetNomeBloco
///   variables    all of them
///   stored data  updateXData, updateXDataHandle, convertXDataType, removeXdata, getNamedDic
///   layers       ApagarEntidadesLayer, GetLayers, GetLayerCorrente, SetLayerCorrente, RenomearLayer
/// An OdError or a standard exception out of these is written to the log behind the member's name, as in
/// "CICad::GetPrompt : reason", and raised again; members that call each other write a line each. Out of the
/// other members it passes without a line of their own. What was being filled is gone then, but for a block
/// that the caller handed in. An object of another class than the place asks for raises
/// OdError_NotThatKindOfClass.
///
/// Smart pointers given to a member are let go on every path. A member opens for reading and upgrades when a
/// change is really needed, unless its comment says that it opens for write; opening for write without a
/// change tells no reactor and files nothing for undo.
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

    // --- Variables of a document ---
    //
    // A variable is a symbol of the document's LISP session, so a routine and a command share its value for
    // as long as the document is open; no drawing file stores it. The name is taken as it stands, and case
    // counts. The readers give `padrao` (the default) for a null document and a missing symbol, and look at
    // the first record of the value only.

    /// Whether a symbol is set to anything but nil, be it 0 or the text "0". Nil gives `padrao` as well, so
    /// with a `padrao` of true the answer is always true.
    bool GetVarBool(RZString nome, bool padrao, CHostDocument* doc);
    /// An integer that fits 16 bits; any other value gives `padrao`.
    int GetVarInt(RZString nome, int padrao, CHostDocument* doc);
    /// A real, or an integer that fits 16 bits; any other value gives `padrao`.
    double GetVarReal(RZString nome, double padrao, CHostDocument* doc);
    /// A text. Any other value, nil too, gives the empty text; `padrao` is for a symbol that isn't there.
    RZString GetVarStr(RZString nome, RZString padrao, CHostDocument* doc);
    /// The texts of a list, at any depth, in order; a single text is a list of one. Whatever else stands in
    /// the value is passed over. Empty for a null document and a missing symbol.
    RZStringList GetVarLstStr(RZString nome, CHostDocument* doc);

    // The writers need a document: null is an error of the caller that nothing catches.

    /// True or nil.
    void SetVarBool(RZString nome, bool valor, CHostDocument* doc);
    /// An integer of 16 bits: the low ones of `valor`, so 70000 reads back as 4464 and 40000 as -25536.
    void SetVarInt(RZString nome, int valor, CHostDocument* doc);
    void SetVarReal(RZString nome, double valor, CHostDocument* doc);
    void SetVarStr(RZString nome, RZString valor, CHostDocument* doc);
    /// A list of texts in order; an empty one is nil to the session.
    void SetVarLstStr(RZString nome, RZStringList lista, CHostDocument* doc);
    void SetVarLstStr(RZString nome, std::vector<RZString> lista, CHostDocument* doc);

    // --- Extended data ---
    //
    // These change a record that is there; none makes a chain. A record is named by the application id and
    // its position in the chain of that id: 0 is the record with the id itself, group 1001, and data begins
    // at 1. A null object and a position without a record, a negative one too, give false, and the object is
    // neither changed nor opened for write. Writing needs the object open for write, and it is upgraded when
    // it isn't; it stays so for as long as somebody holds it.

    /// Sets the text, or the integer, of a record, whose group code stays as it was. The id is registered in
    /// getDatabase() first, and stays registered when false is given. At position 0 a text names another
    /// application: the chain is copied to that id, and the one under the old id stays.
    bool updateXData(OdSmartPtr<OdDbObject> obj, RZString id, int posicao, RZString valor);
    bool updateXData(OdSmartPtr<OdDbObject> obj, RZString id, int posicao, int valor);
    /// Opens the object for write; false, with nothing registered, when it can't be opened.
    bool updateXData(RZID objId, RZString id, int posicao, RZString valor);
    /// Points a stored handle to what became of its object in a deep clone. `mapa2` is asked first and
    /// `mapa1` when that gives no object that can be opened. False, with nothing changed, when neither does,
    /// for a text that names no object of getDatabase(), and for a null `mapa1`; a null `mapa2` counts as
    /// empty. Registers nothing.
    bool updateXDataHandle(OdSmartPtr<OdDbObject> obj, RZString id, int posicao,
                           OdSmartPtr<OdDbIdMapping> mapa1, OdSmartPtr<OdDbIdMapping> mapa2);
    /// What became of an object in a deep clone; the null id when the mapping doesn't hold it or is null.
    RZID getObjectId(OdSmartPtr<OdDbIdMapping> mapa, RZID id);
    /// Gives a record another group code; its value stays as it is. Registers nothing. Position 0 holds the
    /// id: another code there raises OdError, since no chain begins so.
    bool convertXDataType(OdSmartPtr<OdDbObject> obj, RZString id, int posicao, int codigo);
    /// The same for each object in order; true when at least one was changed.
    bool convertXDataType(OdArray<OdDbObjectId> ids, RZString id, int posicao, int codigo);
    /// Removes the chain of an id, silently also when there is none. The id stays registered; chains of other
    /// ids stay. Nothing happens for null.
    void removeXdata(OdSmartPtr<OdDbObject> obj, RZString id);

    // --- Dictionaries of the drawing ---

    /// The dictionary of this name among the named objects, open for write. One is made when there is none,
    /// and an entry of another class is replaced by it and erased. Null for a null database and one without
    /// named objects.
    OdSmartPtr<OdDbDictionary> getNamedDic(RZString nome, const OdDbDatabase* db);
    /// The dictionary "RZ_CABOS" of the cables, open for write, made when there is none. The same name is
    /// registered as an application id in getDatabase(), and the named objects are opened for write. An entry
    /// of another class raises OdError_NotThatKindOfClass and stays. Null as above.
    OdSmartPtr<OdDbDictionary> getDicCabos(CHostDatabase* db);

    // --- Layers ---
    //
    // Layers go by their exact names. A null database has no layers, nor has one without a layer table.

    /// Makes a layer with the defaults of a new record, which opens the layer table for write. False for an
    /// empty name and a name that exists.
    bool CriarLayer(RZString nome, OdDbDatabase* db);
    /// Whether there is a layer that can be opened for write.
    bool ExisteLayer(RZString nome, OdDbDatabase* db);
    /// Erases a layer. True when that is done, and when there is no layer table; false for a missing layer
    /// and one that the drawing won't give up: "0", the current one, and one with entities.
    bool ApagarLayer(RZString nome, OdDbDatabase* db);
    /// Erases the entities of model space on a layer; layouts and blocks keep theirs. Opens model space and
    /// each of its entities for write. Always 0.
    int ApagarEntidadesLayer(RZString nome);
    /// Freezes a layer, which counts as a change also when it is frozen. False for a missing one.
    bool CongelaLayer(RZString nome);
    /// Freezes all layers but "0" that aren't frozen, the current one too: callers make "0" current first.
    /// Always 0.
    int CongelaTodasLayers();
    /// Thaws, unlocks or switches on a layer: 0, or 2 when there is none. One that is in the wanted state
    /// isn't opened for write.
    int DescongelaLayer(RZString nome, OdDbDatabase* db);
    int HabilitaLayer(RZString nome, OdDbDatabase* db);
    int LayerOn(RZString nome, OdDbDatabase* db);
    /// The names of all layers in table order.
    RZStringList GetLayers(OdDbDatabase* db);
    /// The name of the current layer; empty when the database can't tell.
    RZString GetLayerCorrente(OdDbDatabase* db);
    /// Makes a layer of `db` the current one and gives the name of the layer that is current then, by which
    /// callers see whether it worked. The name is thawed first, in getDatabase() and not in `db`.
    RZString SetLayerCorrente(RZString nome, OdDbDatabase* db);
    /// Renames a layer. False when the old name is missing or the new one exists, as for two equal names. An
    /// empty new name, and renaming "0", raise OdError.
    bool RenomearLayer(RZString antigo, RZString novo);
    /// Erases every layer that nothing uses.
    void PurgeLayers(OdSmartPtr<OdDbDatabase> db);
    void PurgeLayers();
    /// The line types of getDatabase() in table order, only with `todos` those for "by block" and "by layer".
    RZStringList getTiposLinhas(bool todos);

private:
    /// Registers an application id in getDatabase() unless it is there. An empty one raises OdError.
    void RegisterAppName(CHostString id);
};
