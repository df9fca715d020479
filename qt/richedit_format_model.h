// The character formats of the Qt widget, kept beside the document rather
// than in it: one small id per character into a table of distinct formats.
// Changing the format of a token is then a fill of a few ids, where the
// document would split fragments and look formats up for every token.
#pragma once

#include <string>
#include <QTextCharFormat>
#include <cstdint>
#include <unordered_map>
#include <vector>

#include "qelkern/richedit.h"

namespace qt_richedit {

using FormatId = uint16_t;

class FormatModel {
public:
    static constexpr FormatId plainId = 0;  // no format of its own: the default

    FormatModel();

    int Length() const { return static_cast<int>(ids.size()); }
    FormatId At(int position) const { return ids[static_cast<size_t>(position)]; }
    const QTextCharFormat& Format(FormatId id) const { return table[id]; }
    bool IsProtected(FormatId id) const { return protectedIds[id]; }
    int FormatCount() const { return static_cast<int>(table.size()); }

    void Reset(int length);
    // The characters of [start, start + removed) give way to `inserted`.
    void Replace(int start, int removed, const std::vector<FormatId>& inserted);
    void Replace(int start, int removed, int insertedLength, FormatId id);
    std::vector<FormatId> Slice(int start, int end) const;

    // Merges the items in cf.dwMask into each character of [start, end);
    // an automatic colour takes the colour away. Unchanged formats are kept.
    void Merge(int start, int end, const CHARFORMAT& cf);
    FormatId Intern(const QTextCharFormat& format);

    // Calls visit(id, from, to) for each run of one id in [start, end).
    template <class Visit>
    void ForEachRun(int start, int end, Visit visit) const {
        int from = start;
        while (from < end) {
            const FormatId id = ids[static_cast<size_t>(from)];
            int to = from + 1;
            while (to < end && ids[static_cast<size_t>(to)] == id) ++to;
            visit(id, from, to);
            from = to;
        }
    }

private:
    // The items of a CHARFORMAT that a merge looks at; no padding, so that
    // the bytes are the key.
    struct MergeKey {
        uint32_t mask, effects;
        int32_t height, offset;
        uint32_t colour;
        FormatId id;
        uint8_t charset;
        char face[LF_FACESIZE + 1];
        bool operator==(const MergeKey& other) const;
    };
    struct MergeKeyHash {
        size_t operator()(const MergeKey& key) const noexcept;
    };
    static MergeKey KeyOfMerge(FormatId id, const CHARFORMAT& cf);
    FormatId Merged(FormatId id, const CHARFORMAT& cf);

    std::vector<FormatId> ids;
    std::vector<QTextCharFormat> table;
    std::vector<bool> protectedIds;
    std::unordered_map<std::string, FormatId> index;  // by the format's bytes
    std::unordered_map<MergeKey, FormatId, MergeKeyHash> merges;
};

}  // namespace qt_richedit
