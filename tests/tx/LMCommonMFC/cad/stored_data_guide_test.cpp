// SPDX-License-Identifier: MIT
// The examples of docs/stored-data.md, each between two lines of dashes, with what they lead to; and a test
// that the page shows them as they stand here.
#include "stored_data.h"

#include "rzprintf.h"

#include <gmock/gmock.h>

#include <fstream>
#include <sstream>

namespace {

using namespace lm::tests;
using testing::ElementsAre;

class StoredDataGuide : public StoredData {
protected:
    CHostDocument* const document = m_document;
};

TEST_F(StoredDataGuide, SharesVariablesWithRoutines) {
    // ---
    CICad cad;
    cad.SetVarInt("QTD_PAGINAS", 12, document);
    cad.SetVarLstStr("PAGINAS", RZStringList{"P01", "P02"}, document);
    document->getAPI()->evalLisp(RZString("(setq TITULO (strcat \"Folha \" (car PAGINAS)))"));
    RZString title = cad.GetVarStr("TITULO", "", document);         // "Folha P01"
    int pages = cad.GetVarInt("QTD_PAGINAS", 0, document);          // 12
    bool forced = cad.GetVarBool("PBLBLNFORCERZ", false, document); // nobody set it: false
    // ---
    EXPECT_EQ(plain(title), "Folha P01");
    EXPECT_EQ(pages, 12);
    EXPECT_FALSE(forced);
}

TEST_F(StoredDataGuide, ChangesARecord) {
    CICad cad;
    const RZID carrier = point();
    // ---
    OdSmartPtr<OdResBuf> chain = OdResBuf::newRb(1001, OdString("TVO_RZ_CFG"));
    chain->append(OdResBuf::newRb(1000, OdString("old.cfg")));
    carrier.openObject(OdDb::kForWrite)->setXData(chain);

    bool changed = cad.updateXData(carrier, "TVO_RZ_CFG", 1, "new.cfg"); // true
    bool further = cad.updateXData(carrier, "TVO_RZ_CFG", 2, "more");    // false: there is no record 2
    // ---
    EXPECT_TRUE(changed);
    EXPECT_FALSE(further);
    EXPECT_EQ(data(carrier), "1001:TVO_RZ_CFG 1000:new.cfg");
}

TEST_F(StoredDataGuide, FollowsAHandleIntoTheCopy) {
    CICad cad;
    CHostDatabase* const database = document->database();
    const OdDbObjectId coil = point();
    const OdDbObjectId contact = pointWith("TVO_RZ_REPRESENTACAO", {"1", handle(coil)});
    // ---
    OdSmartPtr<OdDbIdMapping> mapping(new OdDbIdMapping, lm::drawing::kAttach);
    database->deepCloneObjects({coil, contact}, database->getModelSpaceId(), *mapping);
    RZID copy = cad.getObjectId(mapping, contact);
    cad.updateXDataHandle(copy.openObject(), "TVO_RZ_REPRESENTACAO", 2, mapping, nullptr);
    // ---
    EXPECT_EQ(data(copy), "1001:TVO_RZ_REPRESENTACAO 1000:1 1000:" + handle(cad.getObjectId(mapping, coil)));
}

TEST_F(StoredDataGuide, MakesADictionary) {
    CICad cad;
    // ---
    OdSmartPtr<OdDbDictionary> settings = cad.getNamedDic("MEU_MODULO", document->database());
    settings->setAt("ENTRADA", OdSmartPtr<OdDbXrecord>(new OdDbXrecord, lm::drawing::kAttach));
    // ---
    EXPECT_EQ(cad.getNamedDic("MEU_MODULO", document->database())->numEntries(), 1u);
}

TEST_F(StoredDataGuide, ShowsAPage) {
    CICad cad;
    layer("P01");
    lm::test::ConsoleCapture console;
    // ---
    OdDbDatabase* database = document->database();
    cad.CriarLayer("P02", database); // true: it is new
    cad.SetLayerCorrente("0", database);
    cad.CongelaTodasLayers(); // all but "0"
    if (cad.DescongelaLayer("P02", database) == 0 && cad.SetLayerCorrente("P02", database) == "P02")
        rzPrintf("page %s\n", cad.GetLayerCorrente(database));
    // ---
    EXPECT_EQ(console.text(), "page P02\n");
    EXPECT_TRUE(
        OdSmartPtr<OdDbLayerTableRecord>(OdSmartPtr<OdDbSymbolTable>(database->getLayerTableId().openObject())
                                             ->getAt("P01", OdDb::kForRead))
            ->isFrozen());
}

/// The lines between marks, without their common indentation; blocks are joined by an empty line.
std::string between(const char* path, const std::string& begin, const std::string& end, std::size_t indent) {
    std::ifstream file(std::string(LM_SOURCE_DIR) + path);
    std::string line, all;
    for (bool inside = false; std::getline(file, line);) {
        const std::size_t text = std::min(line.find_first_not_of(' '), line.size());
        if (line.substr(text) == (inside ? end : begin)) {
            inside = !inside;
            if (inside) all += "\n";
        } else if (inside) {
            all += (line.size() > indent ? line.substr(indent) : std::string()) + "\n";
        }
    }
    return all;
}

TEST(StoredDataGuidePage, ShowsTheExamplesAsTheyStandHere) {
    const std::string shown = between("/docs/stored-data.md", "```cpp", "```", 0);
    EXPECT_FALSE(shown.empty());
    EXPECT_EQ(shown, between("/tests/tx/LMCommonMFC/cad/stored_data_guide_test.cpp", "// ---", "// ---", 4));
}

} // namespace
