// SPDX-License-Identifier: MIT
// The check of a drawing: defects by number, and the mending of those that can be mended without losing
// anything. docs/formats/defects.md lists the numbers.
//
//     const lm::drawing::CheckResult result = lm::drawing::check(*db, {.fix = true});
//     for (const auto& finding : result.findings()) print(lm::drawing::CheckResult::text(finding));
#pragma once

#include "drawing/database.h"

#include <map>
#include <string>
#include <vector>

namespace lm::drawing {

/// What the check finds beyond the reader's own numbers (see report.h). Numbers are never given anew.
enum class Flaw : int {
    kUnknownOwner = 201,     ///< an owner that isn't there
    kOtherOwner = 202,       ///< an owner other than the block or table that the entry stands in
    kUnknownEntry = 203,     ///< an entry of a dictionary whose object isn't there
    kDoubledEntry = 204,     ///< a second entry of one name in a dictionary
    kNamesByCase = 205,      ///< two records of a table whose names differ in their case only
    kEntriesByCase = 206,    ///< two entries of a dictionary whose names differ in their case only
    kUnknownInXData = 207,   ///< a handle in extended data whose object isn't there
    kUnknownReactor = 208,   ///< a reactor of an object that isn't there
    kUnknownExtension = 209, ///< an extension dictionary that isn't there
    kUnknownPointer = 210,   ///< any other reference by handle to what isn't there
    kUnregistered = 211,     ///< extended data of an application that isn't registered
    kUnknownLinetype = 212,  ///< a line type that the table lacks
    kUnknownStyle = 213,     ///< a text style that the table lacks
    kBlockCircle = 214,      ///< a block that contains itself, directly or by way of others
    kStrayPart = 215,        ///< an attribute, a vertex or an end mark of these that belongs to nothing
    kMissingRecord = 216,    ///< a record that every drawing has and this one lacked
    kDictionaryCircle = 217, ///< a dictionary that contains itself, directly or by way of others
    kLowSeed = 218,          ///< a seed for new handles at or below a handle in use
    kBadText = 219,        ///< text that isn't valid in its encoding, in a group that the database only keeps
    kNoRecord = 220,       ///< a block without a record in the table
    kNoBlock = 221,        ///< a record in the block table without a block
    kUnknownPicture = 222, ///< a dimension or a table of text whose block isn't there
    kUnknownSetting = 223, ///< a header variable that names a record that isn't there
    kBadXData = 224,       ///< a group of extended data that can't stand there as it is
    kNoVersion = 225       ///< a header that doesn't tell the version of the file
};

/// One defect.
struct Finding {
    int number = 0;           ///< a Defect (1xx) or a Flaw (2xx)
    std::uint64_t handle = 0; ///< of the object; 0 when there is none
    std::string kind;         ///< DXF name of the object; empty when there is none
    std::string text;         ///< what is wrong with it, in words, UTF-8
    /// Whether the drawing in memory no longer has it, so that a saved file won't.
    bool mended = false;
};

/// What a check found, by number. At most `kKept` of a number are kept in full; all are counted.
class LM_DRAWING_API CheckResult {
public:
    static constexpr std::size_t kKept = 100;
    struct Count {
        std::size_t found = 0;
        std::size_t mended = 0;
    };
    /// By number, those of one number in the order of the drawing.
    const std::vector<Finding>& findings() const { return m_findings; }
    /// The numbers that were found.
    const std::map<int, Count>& counts() const { return m_counts; }
    std::size_t count(int number) const;
    std::size_t count(Flaw flaw) const { return count(static_cast<int>(flaw)); }
    std::size_t total() const { return sum().found; }
    /// All counts together.
    Count sum() const;
    /// Whether a further finding of this number would be kept, and not only counted.
    bool keeps(int number) const { return count(number) < kKept; }

    void add(Finding finding);
    /// Counts findings that aren't kept.
    void addCount(int number, Count count);
    void sort();

    /// A number in words, such as "an owner that isn't there".
    static const char* describe(int number);
    /// One line for people: number, what, handle and kind, text, and whether it is mended.
    static std::string text(const Finding& finding);

private:
    std::vector<Finding> m_findings;
    std::map<int, Count> m_counts;
};

/// How a drawing is checked.
struct CheckOptions {
    /// Whether what can be mended is mended, in memory. Nothing that somebody drew or stored is ever taken
    /// out: what can't be mended without that is only found. Meant for a drawing that was just read: undo
    /// doesn't take all of it back.
    bool fix = false;
};

/// Checks a whole drawing and gives what it found, with what the reader found before (see
/// OdDbDatabase::report). Reads every object. Erased objects aren't looked at. The time follows the size of
/// the drawing, whatever its blocks and dictionaries contain of each other.
LM_DRAWING_API CheckResult check(OdDbDatabase& database, const CheckOptions& options = {});

} // namespace lm::drawing
