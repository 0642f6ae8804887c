#include "particles/cindermill/graph/nodes/eventtrigger.h"

namespace {

TClassRegistrar Registrar(&TEventTrigger::ClassId);

} // namespace

int TEventTrigger::ClassId()
{
    static const int id = RegisterExecNode<TEventTrigger>("TEventTrigger");
    return id;
}
