#include "particles/cindermill/main/schedulecomparison.h"

bool TScheduleComparison::HaveSameShape() const
{
    return HaveSameNodes() && HaveSameGroups();
}

bool TScheduleComparison::HaveSameNodes() const
{
    bool same = First.GetNumNodes() == Second.GetNumNodes();
    for (int i = 0; same && i < First.GetNumNodes(); ++i)
        same = First.GetNode(i) == Second.GetNode(i) && First.GetNodeUsage(i) == Second.GetNodeUsage(i);
    return same;
}

bool TScheduleComparison::HaveSameGroups() const
{
    bool same = First.GetNumGroups() == Second.GetNumGroups();
    for (int i = 0; same && i < First.GetNumGroups(); ++i)
        same = First.IsTriggerGroup(i) == Second.IsTriggerGroup(i) &&
               AreSameTiedNodes(First.GetGroup(i).TiedNodes, Second.GetGroup(i).TiedNodes) &&
               AreSameAttributes(First.GetGroup(i).Attributes, Second.GetGroup(i).Attributes);
    return same;
}

bool TScheduleComparison::AreSameTiedNodes(const vector<TTiedNode>& a, const vector<TTiedNode>& b)
{
    bool same = a.size() == b.size();
    for (int i = 0; same && i < a.size(); ++i) {
        same = a[i].Node == b[i].Node && a[i].Inputs.size() == b[i].Inputs.size() &&
               a[i].Outputs.size() == b[i].Outputs.size();
        for (int port = 0; same && port < a[i].Inputs.size(); ++port)
            same = a[i].Inputs[port] == b[i].Inputs[port];
        for (int port = 0; same && port < a[i].Outputs.size(); ++port)
            same = a[i].Outputs[port] == b[i].Outputs[port];
    }
    return same;
}

bool TScheduleComparison::AreSameAttributes(const vector<TGroupAttribute>& a,
                                            const vector<TGroupAttribute>& b)
{
    bool same = a.size() == b.size();
    for (int i = 0; same && i < a.size(); ++i)
        same = a[i].Type == b[i].Type && a[i].Usage == b[i].Usage && a[i].Port == b[i].Port &&
               a[i].ExternalGroup == b[i].ExternalGroup && a[i].ExternalAttrib == b[i].ExternalAttrib;
    return same;
}
