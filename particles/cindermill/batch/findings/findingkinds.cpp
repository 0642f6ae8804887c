#include "particles/cindermill/batch/findings/findingkinds.h"

#include <cstring>
#include <iterator>

namespace {

const TFindingKind Kinds[] = {
    {"load.failed", FS_ERROR, "The file cannot be loaded."},
    {"load.mended", FS_NOTE, "A link that names nothing was mended when the file was loaded."},
    {"schedule.error", FS_ERROR, "The graph cannot be scheduled."},
    {"engine.error", FS_ERROR, "The engine cannot be made: the preview is empty, and nothing is exported."},
    {"export.error", FS_ERROR, "The effect cannot be exported."},
    {"export.warning", FS_WARNING, "The effect can be exported, and the export has something to tell."},
    {"project.error", FS_ERROR, "The project file cannot be read, or not in full: nothing was looked at."},
    {"type.error", FS_ERROR, "A node type file cannot be read, or not in full."},
    {"type.stale", FS_WARNING, "A node's type differs from the library's of the same name."},
    {"type.missing", FS_WARNING, "The library has no type of a node's name."},
    {"run.stopped", FS_ERROR, "The engine fails while the effect runs."},
    {"run.short", FS_WARNING, "The effect computes so much that it was not run to the end."},
    {"capacity.lost", FS_WARNING,
     "Particles are born where there is no room: the oldest vanish before their time."},
    {"capacity.full", FS_NOTE, "A group uses all of its Particle Count, and loses nothing."},
    {"capacity.waste", FS_WARNING, "A group never uses half of its Particle Count."},
    {"emission.cut", FS_WARNING,
     "An emitter owes more particles in a frame than its Per frame max emission lets it bring."},
    {"emission.over", FS_WARNING,
     "A frame brings a group more particles than the file tells the console to expect."},
    {"emission.none", FS_WARNING, "A group never gets a particle."},
    {"life.endless", FS_WARNING, "The particles of a group never die."},
    {"life.stays", FS_NOTE, "Particles that all came early never die: they stay for good."},
    {"life.beyond", FS_NOTE,
     "Particles live longer than the run: what it says of their group may not be all."},
    {"number.bad", FS_ERROR, "A node writes what is no finite number."},
    {"number.field", FS_ERROR, "A number does not fit its field of the exported file, and is cut."},
    {"box.left", FS_WARNING, "Particles leave the static bounding box of their render stage."},
    {"box.suggested", FS_NOTE, "The box that holds all that a render stage drew in all runs."},
    {"box.none", FS_WARNING, "The policies ask for a bounding box, and the effect has none."},
    {"box.mixed", FS_WARNING,
     "The policies forbid a stage with a static and a dynamic box, and the effect has one."},
    {"budget.over", FS_ERROR, "The effect takes more of the console than its project lets it."},
    {"budget.used", FS_NOTE, "What the effect takes of the console."},
    {"file.unnamed", FS_ERROR, "A node needs a texture or an animation, and names none."},
    {"file.missing", FS_ERROR, "A texture or an animation is not found."},
    {"file.unreadable", FS_ERROR, "A texture or an animation is found, and is none that can be read."},
    {"file.damaged", FS_WARNING,
     "An animation is read, though the tags of its file do not match: the end may be missing."},
    {"file.sides", FS_WARNING, "A picture's sides are no powers of two."},
    {"file.outside", FS_WARNING,
     "A file's name leads outside of the resource base: other machines will not find it."},
    {"graph.unused", FS_WARNING, "What a node computes reaches no render stage."},
    {"graph.dropped", FS_WARNING,
     "A node leads to a render stage, and yet belongs to no group of particles."},
    {"graph.bypassed", FS_WARNING, "A node is bypassed."},
    {"graph.converts", FS_NOTE, "A wire joins two types, and the value is converted on its way."},
    {"graph.zero", FS_WARNING,
     "A wire joins two types of which the one cannot become the other: nothing arrives."},
    {"graph.curve", FS_WARNING, "A curve over life is longer or shorter than the life."},
    {"graph.priority", FS_WARNING,
     "Render stages share a priority: which is drawn first hangs on how the graph was built."},
    {"console.grid", FS_NOTE, "The console has no grid: all its particles start at the transform."},
    {"console.nothing", FS_NOTE, "The console has no command for a node: what it computes is 0 there."},
    {"console.plane", FS_NOTE, "The console reflects at an endless plane, by another rule than the preview."},
    {"console.fixed", FS_NOTE, "An input is wired, but the console gets the value that stands on the node."},
    {"console.event", FS_NOTE, "An event is fired on the console only."},
    {"console.life", FS_NOTE, "The console ends the effect after its life time; the preview runs on."},
    {"console.birth", FS_NOTE,
     "Particles share the last value of birth in the preview; on the console each has its own."},
    {"console.count", FS_NOTE, "A number of births is read as a value too, and is 0 there on the console."},
    {"console.sum", FS_NOTE,
     "Values of two types are added: the console repeats the components of the second."},
    {"console.ends", FS_NOTE,
     "Several nodes end particles of a group: where two end one, the preview takes another with it."},
    {"console.places", FS_NOTE,
     "A node stands in several places, which the preview and the console count otherwise."},
    {"console.order", FS_NOTE,
     "A group runs ahead of the one that fires it: on the console its particles come a frame later."},
    {"replay.value", FS_ERROR, "The exported file computes another value than the preview shows."},
    {"replay.undefined", FS_ERROR, "Nothing in the exported file writes a value that the preview shows."},
    {"replay.unknown", FS_WARNING, "A value of the exported file hangs on what is not known."},
    {"replay.count", FS_ERROR, "The exported file has another number of particles than the preview."},
    {"replay.stage", FS_ERROR,
     "The exported file gives a render stage something else than the preview draws with."},
    {"replay.note", FS_NOTE, "Something cannot be replayed, or is by a guess, or is told to differ."},
};

} // namespace

int GetNumFindingKinds()
{
    return static_cast<int>(std::size(Kinds));
}

const TFindingKind& GetFindingKind(int index)
{
    return Kinds[index];
}

const TFindingKind* FindFindingKind(const char* id)
{
    for (const TFindingKind& kind : Kinds)
        if (std::strcmp(kind.Id, id) == 0)
            return &kind;
    return nullptr;
}

const char* GetReplayFindingId(const char* difference)
{
    const TString id = TString("replay.") += difference;
    const TFindingKind* kind = FindFindingKind(id);
    ASSERT(kind != nullptr);
    return kind->Id;
}
