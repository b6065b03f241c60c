// Depth first, as a recursive save would do it: an attribute's identifier, the lines of its value and of all below it,
// then the object's line for it. The levels are on a stack of their own, so depth needs heap and nothing else.
//
// Invariants: the contents of every object on the stack are marked as being saved, so an object inside itself is
// recognised at once. Hazard: adding a level moves the others, so no reference to a level is kept across Begin().

#include "objects/save_context.h"

#include <cstring>
#include <string_view>

#include "TADiagnostics.h"
#include "base/compiler.h"
#include "base/failure_report.h"
#include "objects/name_chain.h"
#include "objects/shared_text.h"

using namespace zel;

namespace {

constexpr const char* typeNames[] = {"Null",     "AttrString",  "AttrFileName", "AttrObject",
                                     "AttrList", "AttrInteger", "AttrPath"};

}  // namespace

const char* TAPObjectSaveContext::TypeName(const TAPAttr& attribute) noexcept {
    return typeNames[attribute._type];
}

bool TAPObjectSaveContext::Close(ZELString* error) noexcept {
    bool isWritten = !_isShortOfMemory;
    if (!isWritten && error != nullptr) *error = "not enough memory";
    while (_openCount > 0) {
        const int kind = _opened[--_openCount];
        _files[kind].Close();
        if (_files[kind].Error() == 0) continue;
        isWritten = false;
        if (error != nullptr) *error = ZELString(PathOf(kind)).Append(": ").Append(std::strerror(_files[kind].Error()));
    }
    return isWritten;
}

TAFileName TAPObjectSaveContext::PathOf(int kind) const noexcept {
    TAFileName path = _directory + (kind == Objects ? "Objects" : typeNames[kind]);
    path.AddExtension(".txt");
    return path;
}

DumpFile& TAPObjectSaveContext::File(int kind) noexcept {
    DumpFile& file = _files[kind];
    if (!file.IsOpened()) {
        file.Open(PathOf(kind));
        _opened[_openCount++] = kind;
    }
    return file;
}

void TAPObjectSaveContext::SaveObject(const TAPObject& object, int id) noexcept {
    const std::size_t height = _levels.Size();
    BeginObject(&object, id);
    WorkOff(height);
}

void TAPObjectSaveContext::SaveAttribute(const TAPAttr& attribute, int id) noexcept {
    const std::size_t height = _levels.Size();
    Begin(attribute, id);
    WorkOff(height);
}

// Continues the topmost level until no more than `height` are left.
void TAPObjectSaveContext::WorkOff(std::size_t height) noexcept {
    while (_levels.Size() > height) {
        if (_levels.Last().object != nullptr)
            ContinueObject();
        else
            ContinueList();
    }
}

// Writes the lines of a value, and makes its object or list the topmost level.
void TAPObjectSaveContext::Begin(const TAPAttr& attribute, int id) noexcept {
    if (attribute._isIncomplete) _isShortOfMemory = true;
    switch (attribute._type) {
        case TAPAttr::TypeString:
            File(attribute._type).Put(id, ':', SharedText::View(attribute._value.text), '\n');
            break;
        case TAPAttr::TypeFileName:
            File(attribute._type).Put(id, ':', attribute._value.fileName->View(), '\n');
            break;
        case TAPAttr::TypeInteger:
            File(attribute._type).Put(id, ':', attribute._value.integer, '\n');
            break;
        case TAPAttr::TypePath:
            WritePath(attribute._value.path, id);
            break;
        case TAPAttr::TypeObject: {
            const int objectId = NextId();
            File(attribute._type).Put(id, ':', objectId, '\n');
            BeginObject(attribute._value.object, objectId);
            break;
        }
        case TAPAttr::TypeList:
            File(attribute._type);
            Push({nullptr, &attribute._value.list->values, id, 1, 0});
            break;
        default:
            break;
    }
}

void TAPObjectSaveContext::BeginObject(const TAPObject* object, int id) noexcept {
    File(Objects);
    if (object != nullptr && object->_isIncomplete) _isShortOfMemory = true;
    if (object == nullptr || object->_contents == nullptr) return;
    if (object->_contents->isBeingSaved) {
        Trace("WARNING : object met again inside itself, not saved as " + toString(id), 0);
        return;
    }
    Push({object->_contents, nullptr, id, 0, 0});
}

// The names from the third on, and two empty ones at the end, as TAPPath::operator[] returns them for 1 to Size().
void TAPObjectSaveContext::WritePath(const TAPPath* path, int id) noexcept {
    DumpFile& file = File(TAPAttr::TypePath);
    file.Put(id, ':');
    struct Step {
        const TAPName* name;
    };
    GrowingArray<Step> names;
    const TAPPath::Node* const last = path != nullptr ? path->_last : nullptr;
    for (const TAPPath::Node* node = last; node != nullptr && node->length > TAPPath::Node::Shift; node = node->parent)
        if (!names.Append({node->name})) FailForMemory(sizeof(Step));
    for (; !names.IsEmpty(); names.RemoveLast()) {
        const TAPName* const name = names.Last().name;
        file.Put(std::string_view(name != nullptr ? name->GetName() : ""), ';');
    }
    for (int i = 0; last != nullptr && i < TAPPath::Node::Shift && i < last->length; ++i) file.Put(';');
    file.Put('\n');
}

void TAPObjectSaveContext::FailForMemory(std::size_t size) noexcept {
    ReportAllocFailure("TAPObjectSaveContext", size);
    _isShortOfMemory = true;
}

// Without memory this branch ends here.
void TAPObjectSaveContext::Push(const Level& level) noexcept {
    if (!_levels.Append(level))
        FailForMemory(sizeof(Level));
    else if (level.object != nullptr)
        level.object->isBeingSaved = true;
}

void TAPObjectSaveContext::WriteAttributeLine(const Level& level) noexcept {
    const int place = level.next - 1;
    const TAPAttr* const attribute = level.object->At(place);
    const std::string_view name = level.object->attributes[place];
    const std::string_view kind = attribute != nullptr ? TypeName(*attribute) : "";
    File(Objects).Put(level.id, ':', name, ':', kind, ':', level.attributeId, '\n');
}

// Names and values lie where they were allocated: a large object is read at the speed of memory's answers, unless it is
// asked some places ahead.
void TAPObjectSaveContext::LookAhead(const TAPObject::Contents& object, int place) noexcept {
    constexpr int Far = 16, Near = 8;
    Prefetch(object.attributes[place + Far]);
    Prefetch(object.At(place + Far));
    const TAPAttr* const soon = object.At(place + Near);
    if (soon != nullptr && soon->_type == TAPAttr::TypeString) Prefetch(soon->_value.text);
}

// Goes on with the attributes up to one that has a level of its own, or to the end.
void TAPObjectSaveContext::ContinueObject() noexcept {
    const std::size_t height = _levels.Size();
    while (_levels.Size() == height) {
        Level& level = _levels.Last();
        if (level.next > 0) WriteAttributeLine(level);
        if (level.next == level.object->attributes.Size()) {
            level.object->isBeingSaved = false;
            _levels.RemoveLast();
            return;
        }
        LookAhead(*level.object, level.next);
        level.attributeId = NextId();
        const TAPAttr* const attribute = level.object->At(level.next++);
        if (attribute != nullptr) Begin(*attribute, level.attributeId);
    }
}

void TAPObjectSaveContext::ContinueList() noexcept {
    const std::size_t height = _levels.Size();
    while (_levels.Size() == height) {
        Level& level = _levels.Last();
        if (level.next > level.list->Size()) {
            _levels.RemoveLast();
            return;
        }
        const int place = level.next++;
        const int elementId = NextId();
        File(TAPAttr::TypeList).Put(level.id, ':', place, ':', elementId, '\n');
        Begin((*level.list)[place], elementId);
    }
}

int TAPObject::SaveToFile(TAFileName directory) noexcept {
    TAPObjectSaveContext context(directory);
    return SaveToFile(context.NextId(), context);
}

int TAPObject::SaveToFile(TAFileName directory, ZELString& error) noexcept {
    TAPObjectSaveContext context(directory);
    SaveToFile(context.NextId(), context);
    return context.Close(&error) ? 0 : 1;
}

int TAPObject::SaveToFile(int id, TAPObjectSaveContext& context) noexcept {
    context.SaveObject(*this, id);
    return 0;
}

ZELString TAPAttr::SaveToFile(int id, TAPObjectSaveContext& context) const noexcept {
    context.SaveAttribute(*this, id);
    return TAPObjectSaveContext::TypeName(*this);
}
