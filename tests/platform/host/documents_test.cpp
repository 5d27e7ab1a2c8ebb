// SPDX-License-Identifier: MIT
// Documents: opening, closing, the active one, and who is told.
#include "hostsupport.h"

#include "drawing/alloc.h"
#include "drawing/curves.h"
#include "host/modulecallbacks.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace {

using namespace lm::test;

/// Writes down what it is told.
class Listener : public CHostDocumentManagerReactor, public lm::host::ModuleCallbacks {
public:
    explicit Listener(bool join = true) {
        if (!join) return;
        lm::host::documentManager().addReactor(this);
        lm::host::addModuleCallbacks(this);
    }
    ~Listener() override {
        lm::host::documentManager().removeReactor(this);
        lm::host::removeModuleCallbacks(this);
    }
    void DatabaseAttached(CHostDocument* d) override { note("Attached", d); }
    void DatabaseDetached(CHostDocument* d) override { note("Detached", d); }
    void onDocumentActivated(CHostDocument* d) override { note("onActivated", d); }
    void onDatabaseAttached(CHostDocument* d) override { note("onAttached", d); }
    void onDatabaseDetached(CHostDocument* d) override { note("onDetached", d); }
    void onDatabaseReady(CHostDocument* d) override { note("onReady", d); }

    std::function<void(const std::string&, CHostDocument*)> also;
    std::string told;

private:
    void note(const std::string& what, CHostDocument* document) {
        if (!told.empty()) told += ' ';
        told += what;
        EXPECT_NE(nullptr, document);
        if (also) also(what, document);
    }
};

TEST(Documents, AreAbsentAtTheStart) {
    EXPECT_EQ(nullptr, ACTIVE_DOCUMENT());
    EXPECT_EQ(0, lm::host::documentManager().documentCount());
    EXPECT_EQ(nullptr, lm::host::documentManager().documentAt(0));
}

TEST(Documents, OpenADrawingFile) {
    Documents documents;
    TemporaryFolder folder;
    const std::string path = folder.file("Peça 1.dwg", kEmptyDrawing);
    CHostDocument* document = documents.manager.openDocument(odPath(path));
    ASSERT_NE(nullptr, document);
    EXPECT_EQ(document, ACTIVE_DOCUMENT());
    ASSERT_NE(nullptr, document->database());
    EXPECT_FALSE(document->database()->getModelSpaceId().isNull());
    EXPECT_EQ(odPath(path), document->fileName());
    EXPECT_NE(nullptr, document->getAPI());
    EXPECT_TRUE(document->database()->isKindOf(CHostDatabase::desc()));
    EXPECT_EQ(document, documents.manager.document(document->database()));
}

TEST(Documents, ThatCannotBeReadChangeNothing) {
    Documents documents;
    Listener listener;
    TemporaryFolder folder;
    EXPECT_THROW(documents.manager.openDocument(odPath((folder.path() / "nenhum.dxf").string())), OdError);
    EXPECT_THROW(documents.manager.openDocument(odPath(folder.path().string())), OdError);
    EXPECT_THROW(documents.manager.openDocument(odPath(folder.file("outro.dxf", "not a drawing at all"))),
                 OdError);
    EXPECT_EQ(0, documents.manager.documentCount());
    EXPECT_EQ(nullptr, ACTIVE_DOCUMENT());
    EXPECT_EQ("", listener.told);
}

TEST(Documents, NumbersAreNeverUsedAgain) {
    Documents documents;
    const int first = documents.manager.newDocument()->number();
    EXPECT_GE(first, 1);
    CHostDocument* second = documents.manager.newDocument();
    EXPECT_EQ(first + 1, second->number());
    documents.manager.closeDocument(second);
    EXPECT_EQ(first + 2, documents.manager.newDocument()->number());
}

TEST(Documents, AreFoundByIndexAndByDatabase) {
    Documents documents;
    CHostDocument* a = documents.manager.newDocument();
    CHostDocument* b = documents.manager.newDocument();
    EXPECT_EQ(2, documents.manager.documentCount());
    EXPECT_EQ(a, documents.manager.documentAt(0));
    EXPECT_EQ(b, documents.manager.documentAt(1));
    EXPECT_EQ(nullptr, documents.manager.documentAt(2));
    EXPECT_EQ(nullptr, documents.manager.documentAt(-1));
    EXPECT_EQ(b, documents.manager.document(b->database()));
    EXPECT_EQ(nullptr, documents.manager.document(nullptr));
    const CHostDatabase separate;
    EXPECT_EQ(nullptr, documents.manager.document(&separate));
}

TEST(Documents, WithoutDatabaseAreNotAnnouncedAsDatabases) {
    Documents documents;
    Listener listener;
    CHostDocument* document = documents.manager.newDocumentWithoutDatabase();
    EXPECT_EQ(nullptr, document->database());
    EXPECT_TRUE(document->fileName().isEmpty());
    EXPECT_EQ(document, ACTIVE_DOCUMENT());
    EXPECT_TRUE(documents.manager.closeDocument(document));
    EXPECT_EQ("onActivated", listener.told);
}

TEST(Documents, AreAnnouncedInOrder) {
    Documents documents;
    Listener listener;
    listener.also = [&](const std::string&, CHostDocument* document) {
        EXPECT_EQ(document, ACTIVE_DOCUMENT());
        EXPECT_EQ(document, documents.manager.document(document->database()));
    };
    CHostDocument* document = documents.manager.newDocument();
    EXPECT_EQ("onActivated Attached onAttached onReady", listener.told);
    listener.told.clear();
    EXPECT_TRUE(documents.manager.closeDocument(document));
    EXPECT_EQ("Detached onDetached", listener.told);
}

TEST(Documents, ThatAreOpenAlreadyAreNotReportedToALateReactor) {
    Documents documents;
    documents.manager.newDocument();
    Listener listener;
    EXPECT_EQ("", listener.told);
}

TEST(Documents, ChangeTheActiveOne) {
    Documents documents;
    CHostDocument* a = documents.manager.newDocument();
    CHostDocument* b = documents.manager.newDocument();
    Listener listener;
    documents.manager.setActiveDocument(a);
    EXPECT_EQ(a, ACTIVE_DOCUMENT());
    documents.manager.setActiveDocument(a);
    EXPECT_EQ("onActivated", listener.told) << "told once";
    documents.manager.setActiveDocument(nullptr);
    EXPECT_EQ(nullptr, ACTIVE_DOCUMENT());
    documents.manager.setActiveDocument(reinterpret_cast<CHostDocument*>(&listener));
    EXPECT_EQ(nullptr, ACTIVE_DOCUMENT());
    documents.manager.setActiveDocument(b);
    documents.manager.closeDocument(b);
    EXPECT_EQ(a, ACTIVE_DOCUMENT()) << "the latest that remains";
    documents.manager.closeDocument(a);
    EXPECT_EQ(nullptr, ACTIVE_DOCUMENT());
}

TEST(Documents, ClosingAnInactiveOneKeepsTheActiveOne) {
    Documents documents;
    CHostDocument* a = documents.manager.newDocument();
    CHostDocument* b = documents.manager.newDocument();
    documents.manager.closeDocument(a);
    EXPECT_EQ(b, ACTIVE_DOCUMENT());
    EXPECT_FALSE(documents.manager.closeDocument(a)) << "gone already";
    EXPECT_FALSE(documents.manager.closeDocument(nullptr));
}

TEST(Documents, AreNotClosedDuringACall) {
    Documents documents;
    CHostDocument* document = documents.manager.newDocument();
    bool closed = true;
    lm::host::FunctionRegistration close(
        "lmClose", [&](CHostAPI&) { closed = documents.manager.closeDocument(document); });
    hst_resbufW* name = textRecord("lmClose");
    hst_resbufW* result = nullptr;
    document->getAPI()->invoke(name, result);
    document->getAPI()->relRb(name);
    EXPECT_FALSE(closed);
    EXPECT_TRUE(documents.manager.closeDocument(document));
}

/// Tries to close a document in each event of its database and counts what it is told.
struct Closer : OdDbDatabaseReactor, OdDbTransactionReactor {
    explicit Closer(CHostDocument* which) : document(which) {
        document->database()->addReactor(this);
        document->database()->addTransactionReactor(this);
    }
    void objectAppended(const OdDbDatabase*, const OdDbObject*) override { close(); }
    void objectOpenedForModify(const OdDbDatabase*, const OdDbObject*) override { close(); }
    void objectModified(const OdDbDatabase*, const OdDbObject*) override { close(); }
    void objectErased(const OdDbDatabase*, const OdDbObject*, bool) override { close(); }
    void objectUnAppended(const OdDbDatabase*, const OdDbObject*) override { close(); }
    void objectReAppended(const OdDbDatabase*, const OdDbObject*) override { close(); }
    void modifyUndone(const OdDbDatabase*, const OdDbObject*) override { close(); }
    void transactionEnded(OdDbDatabase*) override { close(); }
    void close() {
        ++told;
        EXPECT_TRUE(document->isBusy());
        EXPECT_FALSE(lm::host::documentManager().closeDocument(document));
    }
    CHostDocument* document;
    int told = 0;
};

/// What is told goes on with the database afterwards, and so does who opened a transaction.
TEST(Documents, AreNotClosedByWhomTheirDatabaseTells) {
    Documents documents;
    CHostDocument* const document = documents.manager.newDocument();
    CHostDatabase& db = *document->database();
    {
        Closer first(document), second(document);
        const OdSmartPtr<OdDbLine> line(new OdDbLine, lm::drawing::kAttach);
        db.startTransaction();
        EXPECT_FALSE(documents.manager.closeDocument(document));
        OdSmartPtr<OdDbBlockTableRecord>(db.getModelSpaceId().openObject(OdDb::kForWrite))
            ->appendOdDbEntity(line);
        line->downgradeOpen();
        db.endTransaction();
        EXPECT_EQ(2, first.told) << "appended, and the transaction's end";
        db.startUndoRecord();
        line->upgradeOpen();
        line->setEndPoint({1, 0, 0});
        line->downgradeOpen();
        EXPECT_EQ(4, first.told) << "opened and modified";
        db.undo();
        EXPECT_EQ(5, first.told) << "undone";
        db.undo();
        db.redo();
        EXPECT_EQ(7, first.told) << "gone and back";
        line->upgradeOpen();
        line->erase();
        EXPECT_EQ(8, first.told);
        EXPECT_EQ(first.told, second.told);
        EXPECT_FALSE(document->isBusy());
        db.removeReactor(&first);
        db.removeReactor(&second);
        db.removeTransactionReactor(&first);
        db.removeTransactionReactor(&second);
    }
    EXPECT_TRUE(documents.manager.closeDocument(document));
}

TEST(Documents, ReactorsCountOnceAndMayLeaveDuringACall) {
    Documents documents;
    Listener first, second;
    documents.manager.addReactor(&first);
    documents.manager.addReactor(nullptr);
    EXPECT_EQ(2u, documents.manager.reactorCount());
    first.also = [&](const std::string& what, CHostDocument*) {
        if (what != "Attached") return;
        documents.manager.removeReactor(&first);
        documents.manager.removeReactor(&second);
        documents.manager.removeReactor(&second);
    };
    documents.manager.newDocument();
    EXPECT_EQ("onActivated Attached onAttached onReady", first.told);
    EXPECT_EQ("onActivated onAttached onReady", second.told) << "removed before its turn";
}

TEST(Documents, OpenedInsideACallbackAreReached) {
    Documents documents;
    Listener listener;
    bool nested = false;
    listener.also = [&](const std::string& what, CHostDocument*) {
        if (what != "Attached" || nested) return;
        nested = true;
        documents.manager.newDocument();
    };
    int reached = 0;
    documents.manager.newDocument();
    for (unsigned short i = 0; i < documents.manager.documentCount(); ++i)
        if (documents.manager.documentAt(i) != nullptr) ++reached;
    EXPECT_EQ(2, reached);
}

TEST(Documents, ClosedInsideTheirOwnAnnouncementAreTakenBackQuietly) {
    Documents documents;
    Listener listener, behind;
    listener.also = [&](const std::string& what, CHostDocument* document) {
        if (what == "onActivated") return;
        const bool closed = documents.manager.closeDocument(document);
        EXPECT_EQ(what == "Attached", closed) << what;
    };
    EXPECT_EQ(nullptr, documents.manager.newDocument());
    EXPECT_EQ("onActivated Attached Detached onDetached", listener.told);
    EXPECT_EQ("onActivated Detached onDetached", behind.told);
    EXPECT_EQ(0, documents.manager.documentCount());
}

TEST(Documents, AnExceptionWhileOpeningClosesAgainAndPasses) {
    Documents documents;
    Listener listener, behind;
    listener.also = [](const std::string& what, CHostDocument*) {
        if (what == "Attached" || what == "Detached") throw std::runtime_error(what);
    };
    try {
        documents.manager.newDocument();
        FAIL() << "no exception";
    } catch (const std::runtime_error& error) {
        EXPECT_STREQ("Attached", error.what());
    }
    EXPECT_EQ(0, documents.manager.documentCount());
    EXPECT_EQ(nullptr, ACTIVE_DOCUMENT());
    EXPECT_EQ("onActivated Attached Detached onDetached", behind.told);
}

TEST(Documents, AnExceptionWhileOpeningClosesWhateverTransactionsItLeaves) {
    Documents documents;
    Listener listener;
    listener.also = [](const std::string& what, CHostDocument* document) {
        if (what != "onReady") return;
        document->database()->startTransaction();
        document->database()->startTransaction();
        throw std::runtime_error(what);
    };
    EXPECT_THROW(documents.manager.newDocument(), std::runtime_error);
    EXPECT_EQ(0, documents.manager.documentCount());
    EXPECT_EQ("onActivated Attached onAttached onReady Detached onDetached", listener.told);
}

TEST(Documents, AnExceptionWhileClosingPassesAfterAllWereTold) {
    Documents documents;
    Listener listener, behind;
    CHostDocument* document = documents.manager.newDocument();
    behind.told.clear();
    listener.also = [](const std::string&, CHostDocument*) { throw OdError(eInvalidInput); };
    EXPECT_THROW(documents.manager.closeDocument(document), OdError);
    EXPECT_EQ("Detached onDetached", behind.told);
    EXPECT_EQ(0, documents.manager.documentCount());
}

TEST(Documents, OwnTheirDatabase) {
    Documents documents;
    const std::size_t blocks = lm::drawing::liveBlocks();
    CHostDocument* document = documents.manager.newDocument();
    const unsigned long long number = document->database()->number();
    {
        OdSmartPtr<CHostDatabase> a(document->database());
        OdSmartPtr<OdDbDatabase> b = a;
        OdSmartPtr<OdDbDatabase> c(document->database());
    }
    document->database()->release();
    document->database()->release();
    EXPECT_EQ(document->database(), CHostDatabase::byNumber(number)) << "no pointer ends it";
    documents.manager.closeDocument(document);
    EXPECT_EQ(nullptr, CHostDatabase::byNumber(number));
    EXPECT_EQ(blocks, lm::drawing::liveBlocks());
}

TEST(Documents, CloseAllEndsTheLatestFirst) {
    Documents documents;
    CHostDocument* a = documents.manager.newDocument();
    CHostDocument* b = documents.manager.newDocument();
    Listener listener;
    std::vector<CHostDocument*> order;
    listener.also = [&](const std::string& what, CHostDocument* document) {
        if (what == "Detached") order.push_back(document);
    };
    documents.manager.closeAll();
    EXPECT_EQ((std::vector<CHostDocument*>{b, a}), order);
}

TEST(ModuleCallbacks, CountOnceAndLeaveSilently) {
    const std::size_t before = lm::host::moduleCallbacksCount();
    Listener listener(false);
    lm::host::addModuleCallbacks(&listener);
    lm::host::addModuleCallbacks(&listener);
    lm::host::addModuleCallbacks(nullptr);
    EXPECT_EQ(before + 1, lm::host::moduleCallbacksCount());
    lm::host::removeModuleCallbacks(&listener);
    lm::host::removeModuleCallbacks(&listener);
    EXPECT_EQ(before, lm::host::moduleCallbacksCount());
}

} // namespace
