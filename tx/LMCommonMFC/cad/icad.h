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
#include "text/cemap.h"
#include "text/rzid.h"
#include "text/rzstring.h"

#include "drawing/blockreference.h"
#include "drawing/database.h"
#include "drawing/dictionary.h"
#include "drawing/idmapping.h"
#include "drawing/symboltable.h"
#include "framework/values/clist.h"

#include <functional>
#include <list>
#include <map>
#include <vector>

class CHostDatabase;
class CHostDocument;
class CHostSelectionSet;

/// Reading and changing of what a project keeps in its drawing: blocks and attributes, variables of the
/// document, extended data and links, dictionaries, layers and pages, and what a project tells of itself.
///
/// What isn't there is told by the result. Members that report, in every form of theirs:
///   attributes   SearchAttribute, SearchAttributes, SearchAttributesConst, GetPrompt, getAttPosicaoPto,
///                SearchAttributeVirtual, AtualizarAtributos, AtualizarAtributoVirtual,
///                AtualizarAtributosVirtual
///   blocks       ExisteBloco, GetNomeBloco
///   variables    all of them
///   stored data  updateXData, updateXDataHandle, convertXDataType, removeXdata, getNamedDic
///   links        getObjIdEsquema, reassociaBlocos, buscaCircuitoLocal of an object,
///                buscaTodosBlocosComCircuitoLocal
///   symbols      InserirBloco, CriarAtributos, canInsert, explodeEntitiesToLayer, tudoParaLayerZero,
///                RedefinirBloco, RedefinirBlocos
///   layers       ApagarEntidadesLayer, GetLayers, GetLayerCorrente, SetLayerCorrente, RenomearLayer
///   pages        GetNumeracaoPaginas, SetNumeracaoPaginas, GetOrdemGrupos, SetOrdemGrupos, GetOrdemPaginas,
///                SetOrdemPaginas, GetPaineisDefinidos, SetPaineisDefinidos
///   navigation   MostrarPagina, IrPara, ZoomExtends, ExecutaFuncaoCad, BuscarDescricaoPagina
///   project      getVersaoProjeto, setVersaoProjeto, GetCfgProjeto, SetCfgProjeto of a name, getKeyNorma
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

    // --- Update of the attributes of references ---
    //
    // These write values into attributes that are there and only where something differs; none makes or
    // erases an attribute. Reactors hear of the attribute alone, never of its reference.

    /// Writes the text of the first attribute of exactly this tag, case counting, unless it is exactly
    /// `valor`. True when there is such an attribute, written or not; false for null.
    bool AtualizarAtributo(OdSmartPtr<OdDbBlockReference> ref, RZString tag, RZString valor);
    /// The same with the invisibility: both are written when one of them differs.
    bool AtualizarAtributo(OdSmartPtr<OdDbBlockReference> ref, RZString tag, RZString valor, bool invisivel);
    /// The same as the first for the first attribute whose tag is in the list, ignoring case; its text is
    /// compared exactly.
    bool AtualizarAtributo(OdSmartPtr<OdDbBlockReference> ref, RZStringList tags, RZString valor);
    /// Open the reference for write; false for any other object and for none.
    bool AtualizarAtributo(RZID id, RZString tag, RZString valor);
    bool AtualizarAtributo(RZID id, RZStringList tags, RZString valor);
    /// The same for an xrecord too, whose virtual attribute is updated. True for an object of either class
    /// even when the attribute isn't there; false for any other.
    bool AtualizarAtributo(RZID id, RZString tag, RZString valor, bool invisivel);
    /// Writes each record of a list into each attribute of its tag, ignoring case, in the order of the
    /// attributes and then of the list, so that of equal tags every attribute ends with the last record. A
    /// write is due when the value differs ignoring case, so that a change of case alone isn't written, or
    /// the invisibility differs, even where only `atualizarInvisivel` would have it written. Each write is
    /// told on its own, and counted in `alterados` unless that is null; nobody sets the count to 0. Opens the
    /// attributes for write. False for a null reference, else true; a null list counts as empty. What was
    /// written before a failure stays.
    bool AtualizarAtributos(OdSmartPtr<OdDbBlockReference> ref, CEListaAtributos* lista,
                            bool atualizarInvisivel, int* alterados);
    /// Opens the reference for write; an object of another class raises OdError_NotThatKindOfClass.
    bool AtualizarAtributos(RZID id, CEListaAtributos* lista, bool atualizarInvisivel, int* alterados);
    /// Writes the text of an attribute by its own id unless it is exactly `valor`. False when that is no
    /// attribute.
    bool SetValorAtributo(RZID id, RZString valor);

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

    /// Rewrites the first line that begins with a tag, ignoring case; the tag is in capitals from then on.
    /// "TAG" also finds the line of "TAG1", and a tag that begins the application's name, the empty one too,
    /// finds that: the lines are then copied to data of another name and stay as they were. True also when
    /// no line was found; false for null. The application is registered in getDatabase(). The object is
    /// upgraded when it isn't open for write.
    bool AtualizarAtributoVirtual(OdSmartPtr<OdDbObject> obj, RZString tag, RZString valor, bool invisivel);
    /// Opens the object for write.
    bool AtualizarAtributoVirtual(RZID id, RZString tag, RZString valor, bool invisivel);
    /// Replaces all lines of an object by those of a list in order; none are left for an empty or a null one.
    /// With `preservarTag` the line of the component's tag stays, as the first one, and records of that role
    /// are passed over. Always true, also when the object can't be opened. The application is registered in
    /// getDatabase() in any case.
    bool AtualizarAtributosVirtual(RZID id, CEListaAtributos* lista, bool preservarTag);

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

    // --- Symbols: insertion of blocks ---
    //
    // A symbol file is a drawing whose layer table holds one layer and whose model space holds no references
    // but to anonymous blocks. One that is refused is told on the host's command line with its block name
    // and path. Blocks that come from files get the origin (0, 0, 0): the drawing's base point stands there.

    /// Places a block in model space, on a layer that is made when it isn't there. A block that the drawing
    /// has is taken as it stands, and the file isn't looked at. When it has none and the file gives none, the
    /// result is a reference to no block. Null without model space. The reference is open for write, and
    /// reactors hear of it when the caller lets it go. `rotacao` in radians; scale 1. A block that shows
    /// model space raises OdError: model space can't contain itself.
    OdSmartPtr<OdDbBlockReference> InserirBloco(RZString arquivo, RZString nome, RZString layer, float x,
                                                float y, float z, float rotacao);
    /// Gives a reference an attribute for each definition of a block that isn't constant, with the default
    /// text, placed by the reference's own transform. Attributes that are there already stay, so a second
    /// call doubles them. The reference must be open for write. Always 0; a null `btrId` adds nothing.
    int CriarAtributos(RZID btrId, OdSmartPtr<OdDbBlockReference> ref);
    /// Loads a symbol file as a block. The null id for a missing file, a refused one, and a name that is
    /// empty or taken. One that can't be read, or be moved to its base point as a whole, raises OdError. One
    /// by which a block would come to contain itself is refused like one with named blocks.
    RZID carregaBTR(RZString nome, RZString arquivo);
    /// The definitions of a block by its name, which is loaded from a symbol file when the drawing lacks it:
    /// as for the block's record, or 2, with `lista` as it was, when there is no such block.
    int SearchAttributes(RZString arquivo, RZString nome, CEListaAtributos*& lista);
    /// Replaces entities by plain geometry in model space, all on a layer that must exist. A reference falls
    /// into its pieces, one level; of its attribute definitions only those become texts whose attribute is
    /// visible and without a value, as empty texts: values don't reach the result. Extended data isn't taken
    /// along. The sources are erased last, wherever they stand: a failure before, such as a reference without
    /// a block, leaves them. False, with nothing changed, for a null list, an empty name, no model space.
    bool explodeEntitiesToLayer(CList<RZID, const RZID&>* ids, RZString layer);
    /// Brings the model space of a drawing, attributes too, to layer "0", makes that the current layer and
    /// erases all others but those that the drawing won't give up, such as those of entities in blocks.
    /// Layer "0" is thawed in getDatabase() and not in `db`. A null `db` raises OdError.
    void tudoParaLayerZero(OdSmartPtr<CHostDatabase> db);

    // --- Symbols: redefinition of blocks ---

    /// Gives a block the content of a symbol file, or of another drawing, which isn't held to the rules of a
    /// symbol file. A block that the drawing lacks is made. One that is there stays the same object, with its
    /// handle and name, gets new entities and the origin (0, 0, 0); its references, in any owner, keep their
    /// place, layer and extended data and get new attributes, with the values and the invisibility that the
    /// attributes of these tags had. False for a refused file, a null drawing, and a name that can't be made;
    /// also, with the line of a refused file, when the block would come to contain itself by way of blocks
    /// inside: these are the drawing's own where it has their names.
    /// A file that is missing, can't be read or moved raises OdError. A failure on the way leaves it half
    /// done: callers bracket the call in an undo group.
    bool RedefinirBloco(RZString arquivo, RZString nome);
    bool RedefinirBloco(OdSmartPtr<OdDbDatabase> db, RZString nome);
    /// Redefines the blocks of a map from symbol files to names. A refused file doesn't end it, an exception
    /// does. True when all of them were redefined.
    bool RedefinirBlocos(CEMap<RZString> blocos);
    /// Erases the blocks that nothing uses. What only such a block uses goes with the next call.
    void PurgeBlocks(OdSmartPtr<OdDbDatabase> db);
    /// Whether macros on pages are to be looked up and updated: the variable "*MACRONASPAGINAS*" of the
    /// active document.
    bool BuscarAtualizarMacros();

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

    // --- Links between the appearances of a component ---
    //
    // One object of a component, on a schematic page, holds its data. Every other appearance, such as its
    // shape on a panel or the label of its wire, keeps the handle of that object in extended data.

    /// The schematic object of a component, from any of its appearances. The first kind of link that the
    /// object bears decides; when its handle is unknown, and without any link, the object counts as its own.
    /// An erased schematic object counts as known for as long as the drawing is open. Handles are looked up
    /// in getDatabase() whatever `db` is. The null id for null.
    RZID getObjIdEsquema(CHostDatabase* db, OdSmartPtr<OdDbObject> obj);
    RZID getObjIdEsquema(CHostDatabase* db, RZID id);
    RZID getObjIdEsquema(RZID id);
    RZID getObjIdEsquema(OdSmartPtr<OdDbObject> obj);
    /// Points the links that were copied along with their objects to the copies; called when both clone
    /// operations of a copy have ended. Objects of `mapa1` are mended by their kind, of those of `mapa2` the
    /// schematic ones only; either mapping may be null. True when an object of a kind that is mended was
    /// met, whether or not a handle changed. What was mended before a failure stays so.
    bool reassociaBlocos(OdSmartPtr<OdDbIdMapping> mapa1, OdSmartPtr<OdDbIdMapping> mapa2);
    /// The point that stands for the start of a wire: far off the sheet, the same for every drawing.
    OdGePoint3d getPontoRefInicioFio();
    /// Whether a point lies on the segment from `inicio` to `fim`, which reaches a tolerance farther at both
    /// ends; the limits belong to it. A segment without length has no direction, and a point is measured as
    /// if it stood straight ahead: true when it is no farther off than the tolerance.
    bool pontoPertenceLinha(OdGePoint3d inicio, OdGePoint3d fim, OdGePoint3d ponto, double tolerancia);

    // --- Local circuits: numbered groups of components ---
    //
    // A component bears the number on its schematic object. Texts and regions belong to another module, which
    // is asked by name; without it, and without a document, what goes out stays as it was.

    /// The circuit of a component: 1 when its schematic object tells none. False, with `numero` as it was,
    /// for null and when the schematic object can't be opened.
    bool buscaCircuitoLocal(OdSmartPtr<OdDbObject> obj, int& numero);
    /// The three texts of a circuit. False, with all of them as they were, unless the answer is a list that
    /// begins with three texts.
    bool buscaCircuitoLocal(int numero, RZString& a, RZString& b, RZString& c);
    /// The texts of a component's circuit, and its number even without texts; an unknown one stays as it was.
    bool buscaCircuitoLocal(OdSmartPtr<OdDbObject> obj, RZString& a, RZString& b, RZString& c);
    bool buscaCircuitoLocal(OdSmartPtr<OdDbObject> obj, RZString& a, RZString& b, RZString& c, int& numero);
    /// False without a getDatabase().
    bool buscaCircuitoLocal(RZID id, RZString& a, RZString& b, RZString& c);
    /// The entities of model space that bear a number themselves, in drawing order, open for reading.
    std::vector<OdSmartPtr<OdDbObject>> buscaTodosBlocosComCircuitoLocal();
    /// The texts of all circuits by number; the first listing of a number counts, a circuit without text is
    /// left out. Null when there are none. Map and lists belong to the caller.
    std::map<int, std::list<RZString>*>* buscaTodosCircuitosLocais();
    /// Asks for the symbol of a circuit to be brought up to date. The name is spelled as callers know it.
    bool atualizarCiruitoLocal(RZString texto1, OdGePoint2d ponto, RZString texto2);
    /// The circuit of a place. Any answer counts: one without a number, nil too, gives 0 and true.
    bool findCircuitoLocalLocation(RZString texto, OdGePoint2d ponto, int& numero);
    /// Drops all circuits; tells that a region was erased. False when the owner can't or isn't there.
    bool clearCircLocal();
    bool processaRegiaoApagada(RZString texto);

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

    // --- Selection ---
    //
    // Entities of model space that a box touches or crosses, in drawing order, on exactly this layer, be it
    // frozen or not. Points are in the user's coordinates of `db`. A setting of the session is 1 while the
    // search runs and has its old value again when it ends, whatever the end.

    /// The selection by a box, from two corners in any order. The caller owns it; null when nothing lies
    /// there, and for a database without a document, a null one too.
    CHostSelectionSet* SSGetCrossing(OdGePoint3d primeiro, OdGePoint3d segundo, CHostString layer,
                                     CHostDatabase* db);
    /// The same by a box around a point, 0.3 drawing units to each side.
    CHostSelectionSet* SSGetCrossing(OdGePoint3d ponto, CHostString layer, CHostDatabase* db);
    /// Call a function for each selected entity in order. The search has ended by then, so the function may
    /// search again; it isn't called when nothing was selected.
    void SSGetCrossing(OdGePoint3d primeiro, OdGePoint3d segundo, CHostString layer, CHostDatabase* db,
                       std::function<void(OdDbObjectId)> funcao);
    void SSGetCrossing(OdGePoint3d ponto, CHostString layer, CHostDatabase* db,
                       std::function<void(OdDbObjectId)> funcao);

    // --- Geometry ---

    /// The unit of an angle; any other value than degrees means radians.
    enum enTipoAngulo : int { kRadianos = 0, kGraus = 1 };

    /// The box of an entity in plain x and y of the drawing, for the classes that occur in a schematic:
    /// references, polylines by vertices, lines, circles, ellipses as if they were circles of the major axis,
    /// and, only when `completo` (full) is true, texts. False, with the outputs as they were, for null, any
    /// other class, a polyline without vertices, and a text that isn't wanted.
    ///
    /// A reference has the box of its block, scaled and moved but not turned, and the attributes' boxes too
    /// when `completo` is true. Two oddities belong to it: the box reaches from the values that the caller
    /// passes, so that with 0 it holds the insertion point; and a negative scale factor swaps nothing. A
    /// reference without a box gives false, and its position has been added to the outputs.
    bool getBoundingBox(OdSmartPtr<OdDbEntity> entidade, double& xMax, double& xMin, double& yMax,
                        double& yMin, bool completo);
    /// The box of a block's entities without texts; those of references inside count. False, with the outputs
    /// as they were, for null and when no entity has a box; a block inside itself has none. A
    /// block outside a drawing raises OdError. The flag isn't looked at.
    bool getBoundingBoxBTR(OdSmartPtr<OdDbBlockTableRecord> btr, double& xMax, double& xMin, double& yMax,
                           double& yMin, bool completo);
    /// The angle from the direction p1 to p2 to the direction p3 to p4, between 0 and half a turn: which way
    /// it turns isn't seen. 0 where a direction has no length.
    double getAngulo(enTipoAngulo tipo, OdGePoint3d p1, OdGePoint3d p2, OdGePoint3d p3, OdGePoint3d p4);
    /// The same from the x axis to the direction p1 to p2.
    double getAngulo(enTipoAngulo tipo, OdGePoint3d p1, OdGePoint3d p2);
    double getAngulo(enTipoAngulo tipo, OdGeVector3d v1, OdGeVector3d v2);
    /// Makes a point at the origin of model space on a layer, such as the one that carries the settings of a
    /// project. Always 0, also without model space. A missing layer isn't made: OdError, and the point stays
    /// on "0".
    int CriarPonto(RZString layer);
    /// Erases an object; nothing happens when it isn't there or is erased already.
    void erase(RZID id);
    /// Whether a path names a file or a folder.
    bool FileExists(RZString caminho);

    // --- Pages: covers, indexes and numbering ---
    //
    // A page is a layer. What a project keeps of its pages stands on its settings carrier, the first point of
    // model space on the layer "RZ_FREEZE", with regard to case. Readers walk model space, which they open
    // for write, and raise no event; a null database has no carrier. Of several such points a reader takes
    // the first that has a value, whereas a writer writes on the very first. Writers register the id of their
    // data in getDatabase() when the carrier was found, and give 0, or 2 without one.

    /// Whether a layer is marked as a cover or as an index. False for a missing layer and for an object of
    /// another class.
    bool isPaginaCapa(RZString layer);
    bool isPaginaCapa(RZID layer);
    bool isPaginaIndice(RZString layer);
    bool isPaginaIndice(RZID layer);
    /// Mark a layer, for as long as it lives; a layer can bear both marks. A missing layer is passed over,
    /// and the id of the mark is registered all the same.
    void setPaginaCapa(RZString layer);
    void setPaginaIndice(RZString layer);
    /// The numbering mode: 1 by project, 0 not. Where nothing is stored, or -1, the variable
    /// "*NUMERAR_POR_PROJ*" of the active document decides: 1 for exactly "S", else 0.
    int GetNumeracaoPaginas(CHostDatabase* db);
    /// Any value is stored as it is. Opens entities for write up to the carrier.
    int SetNumeracaoPaginas(int valor);
    /// The number in decimal with zeros in front up to the width in the variable "*QTD_JUSTIFY_PAG*" of the
    /// active document; a longer one is whole.
    RZString FormataNumeroPagina(int numero);

    // --- Pages: orders of lists, and panels ---
    //
    // On the settings carrier, as above. A text that isn't a number counts as RZString::toInt reads it.

    /// The order of groups, 2 without a value. Of several carriers the last one with a value counts, while a
    /// writer writes on the first.
    int GetOrdemGrupos(CHostDatabase* db);
    int SetOrdemGrupos(int valor);
    /// The order of the pages of one group, 1 without a value. The name of the group is part of the id that
    /// is registered, unchecked and with regard to case.
    int GetOrdemPaginas(RZString grupo);
    int SetOrdemPaginas(RZString grupo, int valor);
    /// The whole chain of the panels, a copy with the id "TVO_RZ_PAINEL" in front; null without one.
    OdSmartPtr<OdResBuf> GetPaineisDefinidos(CHostDatabase* db);
    /// Stores a chain as it stands: its first record names the id that is replaced, and the id alone clears
    /// the panels. Null changes nothing.
    int SetPaineisDefinidos(OdSmartPtr<OdResBuf> paineis);

    // --- Pages: showing them ---
    //
    // All pages lie in model space, and one is shown by freezing the others. What a page's name has before
    // its first "$" is its head, the whole name without one. To a page belong the layers named by the head
    // and "$DE", "$FORMATO" and "$SELO" behind it, of which none needs to exist. Layer "0" is no page.

    /// Shows a page of getDatabase(): it becomes the current layer, and all layers are frozen but this, "0"
    /// and those that belong to it; the one of the stamp, "$SELO", isn't shown for a cover or an index.
    /// `zoom` fits the view. The view is redrawn in any case. 0, or 1 for "0" and a missing layer, with
    /// nothing changed, or 2 when the page doesn't become current: "0" is current then, without a redrawing.
    int MostrarPagina(RZString pagina, bool zoom);
    /// The same for a series of pages: it freezes only the current layer and what belongs to it, be that "0",
    /// and redraws nothing. "0" is shown like any other layer.
    int MostrarPaginaPDF(RZString pagina, bool zoom);
    /// Erases the entities of a page and then its layer; the layers that belong to it stay. "0" becomes the
    /// current layer.
    void ApagarPagina(RZString pagina);
    /// Goes to an object: shows its page, unless that is shown, calls "setaPaginaCorrente", brings the object
    /// into view with a border, in the drawing that it belongs to, and makes it the current selection.
    /// `fator` enlarges the view. Where the object has no box, everything is brought into view, and then
    /// redrawn if `regen` says so. A layer whose name contains "FORMATO", "SELO" or "DE" counts as belonging
    /// to a page, PEDESTAL too, and then the first layer is shown whose name begins with the head. Nothing
    /// happens for what is no entity.
    void IrPara(RZID id, bool regen, double fator);
    /// The value of an attribute of a page's stamp: of the block of this name on the page, else of the one
    /// with "_C" or "_I" behind it, the forms for covers and indexes. Empty without a stamp or the attribute.
    RZString BuscarDescricaoPagina(RZString tag, RZString bloco, RZString pagina);
    /// Fits the active viewport of getDatabase() to what is shown: 0, or 2 without one.
    int ZoomExtends();
    /// Redraws the active document: 0, or 2 without one.
    int Regen();
    /// Evaluates LISP text in the active document. Always true, whatever comes of it.
    bool ExecutaFuncaoCad(RZString expressao);

    // --- Version and configuration of the project ---

    /// The internal version of the product that stored a version last; empty without one. Registers the id
    /// "RZ_VERSAO", so that reading may change a drawing.
    RZString getVersaoProjeto();
    /// Stores a version, which no member reads back, together with the internal version of the product,
    /// CIRegistro::GetVersionInternal. An earlier entry is replaced and erased.
    void setVersaoProjeto(RZString versao);
    /// The name of the configuration file on the settings carrier; empty without one. The first carrier with
    /// a name counts.
    RZString GetCfgProjeto();
    /// Writes on the first carrier, opening entities for write up to it; nothing happens without one.
    void SetCfgProjeto(RZString nome);
    /// The name in the variable "CFG_NOME" of the active document with ".cfg" behind it; ".cfg" alone when
    /// it is unset.
    void SetCfgProjeto();
    /// The drawing's file name with extension, and the folder of getDatabase() with its final separator;
    /// empty for a drawing that was never saved and for a null database.
    RZString GetNomeArquivo(CHostDatabase* db);
    RZString GetPathArquivo();
    /// The current file and document of the document manager: variables of the active document, empty when
    /// unset. The writers need an active document.
    RZString getArqCorrenteGD();
    void setArqCorrenteGD(RZString valor);
    RZString getDocCorrenteGD();
    void setDocCorrenteGD(RZString valor);
    /// The norm key of an object, in two parts, from the first of five kinds of chain that it carries; one
    /// without a key isn't made up for by another kind. A representation asks the object that it stands for,
    /// and when that can't be opened its own text. False without a key; the outputs then stay as they were,
    /// but for a schematic key that is refused since its left part is "0" or its right part is missing.
    /// Registers the five ids in getDatabase(), unless `obj` is null.
    bool getKeyNorma(OdSmartPtr<OdDbObject> obj, RZString& esquerda, RZString& direita);
    bool getKeyNorma(RZID id, RZString& esquerda, RZString& direita);

private:
    /// Marks a layer as of a type: "CAPA" or "INDICE"; another one raises OdError.
    void setTipoLayer(RZString layer, RZString tipo);
    /// Registers an application id in getDatabase() unless it is there. An empty one raises OdError.
    void RegisterAppName(CHostString id);
    /// Whether a drawing may become a block: see the section on insertion. False for null. A refusal writes
    /// its line to the command line.
    bool canInsert(OdSmartPtr<OdDbDatabase> db, RZString nome, RZString caminho);
};
