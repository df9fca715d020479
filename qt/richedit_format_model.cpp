#include "richedit_format_model.h"

#include <QDataStream>
#include <cstring>
#include <limits>

#include "richedit_state.h"

namespace qt_richedit {

namespace {
std::string KeyOf(const QTextCharFormat& format) {
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream << static_cast<const QTextFormat&>(format);
    return bytes.toStdString();
}

}  // namespace

FormatModel::MergeKey FormatModel::KeyOfMerge(FormatId id, const CHARFORMAT& cf) {
    MergeKey key{};
    key.id = id;
    key.mask = cf.dwMask;
    key.effects = cf.dwEffects;
    key.height = cf.yHeight;
    key.offset = cf.yOffset;
    key.colour = cf.crTextColor;
    key.charset = cf.bCharSet;
    std::memcpy(key.face, cf.szFaceName, strnlen(cf.szFaceName, LF_FACESIZE));
    return key;
}

size_t FormatModel::MergeKeyHash::operator()(const MergeKey& key) const noexcept {
    const auto* bytes = reinterpret_cast<const unsigned char*>(&key);
    size_t hash = 14695981039346656037ull;
    for (size_t i = 0; i < sizeof key; ++i) hash = (hash ^ bytes[i]) * 1099511628211ull;
    return hash;
}

bool FormatModel::MergeKey::operator==(const MergeKey& other) const {
    return std::memcmp(this, &other, sizeof other) == 0;
}

namespace {
}  // namespace

FormatModel::FormatModel() { Intern(QTextCharFormat()); }

void FormatModel::Reset(int length) { ids.assign(static_cast<size_t>(std::max(length, 0)), plainId); }

void FormatModel::Replace(int start, int removed, const std::vector<FormatId>& inserted) {
    const auto at = ids.begin() + start;
    ids.erase(at, at + removed);
    ids.insert(ids.begin() + start, inserted.begin(), inserted.end());
}

void FormatModel::Replace(int start, int removed, int insertedLength, FormatId id) {
    Replace(start, removed, std::vector<FormatId>(static_cast<size_t>(insertedLength), id));
}

std::vector<FormatId> FormatModel::Slice(int start, int end) const {
    return std::vector<FormatId>(ids.begin() + start, ids.begin() + end);
}

FormatId FormatModel::Intern(const QTextCharFormat& format) {
    std::string key = KeyOf(format);
    const auto found = index.find(key);
    if (found != index.end()) return found->second;
    // Past the last id every new format shares the last one: formats are
    // few in practice, and running out must not corrupt the ids.
    if (table.size() > std::numeric_limits<FormatId>::max()) return static_cast<FormatId>(table.size() - 1);
    const auto id = static_cast<FormatId>(table.size());
    table.push_back(format);
    protectedIds.push_back(qt_richedit::IsProtected(format));
    index.emplace(std::move(key), id);
    return id;
}

FormatId FormatModel::Merged(FormatId id, const CHARFORMAT& cf) {
    const MergeKey key = KeyOfMerge(id, cf);
    const auto found = merges.find(key);
    if (found != merges.end()) return found->second;
    QTextCharFormat format = table[id];
    format.merge(MaskedFormat(cf));
    if ((cf.dwMask & CFM_COLOR) && (cf.dwEffects & CFE_AUTOCOLOR)) format.clearForeground();
    const FormatId merged = Intern(format);
    merges.emplace(key, merged);
    return merged;
}

void FormatModel::Merge(int start, int end, const CHARFORMAT& cf) {
    FormatId lastSource = plainId;
    FormatId lastResult = Merged(plainId, cf);
    for (int i = start; i < end; ++i) {
        FormatId& id = ids[static_cast<size_t>(i)];
        if (id != lastSource) {
            lastSource = id;
            lastResult = Merged(id, cf);
        }
        id = lastResult;
    }
}

}  // namespace qt_richedit
