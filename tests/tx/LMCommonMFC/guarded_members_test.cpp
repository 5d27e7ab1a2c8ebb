// SPDX-License-Identifier: MIT
// The table of the members that report their failures. A member that joins or leaves it changes what users
// find in the log, so the table is compared with the guards that stand in the sources; what a guard does, and
// what each member reports, is tested beside the guard and the members.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>
#include <string>

namespace {

enum class Reports { kBothKinds, kOdErrorOnly };

using Table = std::map<std::string, Reports>;

const Table kGuarded = {
    {"CEAttributeHelper::findAtt", Reports::kOdErrorOnly},
    {"CICad::ApagarEntidadesLayer", Reports::kBothKinds},
    {"CICad::AtualizarAtributoVirtual", Reports::kBothKinds},
    {"CICad::AtualizarAtributos", Reports::kBothKinds},
    {"CICad::AtualizarAtributosVirtual", Reports::kBothKinds},
    {"CICad::BuscarDescricaoPagina", Reports::kBothKinds},
    {"CICad::CriarAtributos", Reports::kBothKinds},
    {"CICad::ExecutaFuncaoCad", Reports::kBothKinds},
    {"CICad::ExisteBloco", Reports::kBothKinds},
    {"CICad::GetCfgProjeto", Reports::kBothKinds},
    {"CICad::GetLayerCorrente", Reports::kBothKinds},
    {"CICad::GetLayers", Reports::kBothKinds},
    {"CICad::GetNomeBloco", Reports::kBothKinds},
    {"CICad::GetNumeracaoPaginas", Reports::kBothKinds},
    {"CICad::GetOrdemGrupos", Reports::kBothKinds},
    {"CICad::GetOrdemPaginas", Reports::kBothKinds},
    {"CICad::GetPaineisDefinidos", Reports::kBothKinds},
    {"CICad::GetPrompt", Reports::kBothKinds},
    {"CICad::GetVarBool", Reports::kBothKinds},
    {"CICad::GetVarInt", Reports::kBothKinds},
    {"CICad::GetVarLstStr", Reports::kBothKinds},
    {"CICad::GetVarReal", Reports::kBothKinds},
    {"CICad::GetVarStr", Reports::kBothKinds},
    {"CICad::InserirBloco", Reports::kBothKinds},
    {"CICad::IrPara", Reports::kBothKinds},
    {"CICad::MostrarPagina", Reports::kBothKinds},
    {"CICad::RedefinirBloco", Reports::kBothKinds},
    {"CICad::RedefinirBlocos", Reports::kBothKinds},
    {"CICad::RenomearLayer", Reports::kBothKinds},
    {"CICad::SearchAttribute", Reports::kBothKinds},
    {"CICad::SearchAttributeVirtual", Reports::kBothKinds},
    {"CICad::SearchAttributes", Reports::kBothKinds},
    {"CICad::SearchAttributesConst", Reports::kBothKinds},
    {"CICad::SetCfgProjeto", Reports::kBothKinds},
    {"CICad::SetLayerCorrente", Reports::kBothKinds},
    {"CICad::SetNumeracaoPaginas", Reports::kBothKinds},
    {"CICad::SetOrdemGrupos", Reports::kBothKinds},
    {"CICad::SetOrdemPaginas", Reports::kBothKinds},
    {"CICad::SetPaineisDefinidos", Reports::kBothKinds},
    {"CICad::SetVarBool", Reports::kBothKinds},
    {"CICad::SetVarInt", Reports::kBothKinds},
    {"CICad::SetVarLstStr", Reports::kBothKinds},
    {"CICad::SetVarReal", Reports::kBothKinds},
    {"CICad::SetVarStr", Reports::kBothKinds},
    {"CICad::ZoomExtends", Reports::kBothKinds},
    {"CICad::buscaCircuitoLocal", Reports::kBothKinds},
    {"CICad::buscaTodosBlocosComCircuitoLocal", Reports::kBothKinds},
    {"CICad::canInsert", Reports::kBothKinds},
    {"CICad::convertXDataType", Reports::kBothKinds},
    {"CICad::explodeEntitiesToLayer", Reports::kBothKinds},
    {"CICad::getAttPosicaoPto", Reports::kBothKinds},
    {"CICad::getKeyNorma", Reports::kBothKinds},
    {"CICad::getNamedDic", Reports::kBothKinds},
    {"CICad::getObjIdEsquema", Reports::kBothKinds},
    {"CICad::getVersaoProjeto", Reports::kBothKinds},
    {"CICad::reassociaBlocos", Reports::kBothKinds},
    {"CICad::removeXdata", Reports::kBothKinds},
    {"CICad::setVersaoProjeto", Reports::kBothKinds},
    {"CICad::tudoParaLayerZero", Reports::kBothKinds},
    {"CICad::updateXData", Reports::kBothKinds},
    {"CICad::updateXDataHandle", Reports::kBothKinds},
    {"CIRegistro::ReadTextFile", Reports::kBothKinds},
    {"CIRegistro::readValue", Reports::kBothKinds},
    {"CIRegistro::saveValue", Reports::kBothKinds},
    {"rzInvoke2", Reports::kBothKinds},
    {"rzInvokeVoid", Reports::kBothKinds},
};

std::string contentOf(const std::filesystem::path& path) {
    std::ostringstream content;
    content << std::ifstream(path).rdbuf();
    return content.str();
}

/// Adds each `opening"name"` of a source, with white space or a line end allowed before the name.
void addGuards(const std::string& source, const std::string& opening, Reports reports, Table& found) {
    for (std::size_t at = source.find(opening); at != std::string::npos; at = source.find(opening, at + 1)) {
        const std::size_t quote = source.find_first_not_of(" \n", at + opening.size());
        if (quote == std::string::npos || source[quote] != '"') continue;
        const std::size_t end = source.find('"', quote + 1);
        found[source.substr(quote + 1, end - quote - 1)] = reports;
    }
}

Table guardsInSources() {
    Table found;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(LM_SOURCE_DIR "/tx/LMCommonMFC")) {
        if (entry.path().extension() != ".cpp") continue;
        const std::string source = contentOf(entry.path());
        addGuards(source, "guarded(", Reports::kBothKinds, found);
        addGuards(source, "guardedFromOdError(", Reports::kOdErrorOnly, found);
    }
    return found;
}

TEST(GuardedMembers, AreExactlyThoseOfTheTable) {
    const Table found = guardsInSources();
    for (const auto& [name, reports] : kGuarded) {
        const auto at = found.find(name);
        if (at == found.end())
            ADD_FAILURE() << name << " has no guard";
        else
            EXPECT_EQ(at->second, reports) << name;
    }
    for (const auto& [name, reports] : found)
        EXPECT_EQ(kGuarded.count(name), 1u) << name << " isn't in the table";
}

TEST(GuardedMembers, AreGuardedByNothingElse) {
    for (const auto& entry : std::filesystem::recursive_directory_iterator(LM_SOURCE_DIR "/tx/LMCommonMFC")) {
        const std::string name = entry.path().filename().string();
        if (entry.path().extension() != ".cpp" || name == "log.cpp") continue;
        const std::string source = contentOf(entry.path());
        EXPECT_EQ(source.find("reportFailure"), std::string::npos) << name << " reports past the guard";
        if (name == "rzfiledialog.cpp") continue; // its lines tell of a dialog, not of a failure
        EXPECT_EQ(source.find("writeLog"), std::string::npos) << name << " writes to the log past the guard";
    }
}

} // namespace
