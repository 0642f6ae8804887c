#include "countedmemory.h"
#include "parsing.h"

// The memory that a list takes while it is read grows as the list does: one that is moved each time it has
// grown a little takes a hundred times as much for ten times the elements.

#if !defined(CINDERMILL_SANITIZED)

namespace {

std::string Repeated(const std::string& text, int count)
{
    std::string result;
    for (int i = 0; i < count; ++i)
        result += text;
    return result;
}

// What is allocated while the parameter is parsed and cloned.
size_t BytesFor(const std::string& element)
{
    const size_t before = GetAllocatedBytes();
    const TParsed parsed(element);
    if (parsed.Result != nullptr)
        delete parsed.Result->Clone();
    return GetAllocatedBytes() - before;
}

void ExpectLinear(const std::string& kind, const std::string& begin, const std::string& part,
                  const std::string& end)
{
    constexpr int count = 2000;
    constexpr int factor = 10;
    const size_t few = BytesFor(Element(kind, begin + Repeated(part, count) + end));
    const size_t many = BytesFor(Element(kind, begin + Repeated(part, factor * count) + end));
    EXPECT_LT(many, 2 * factor * few) << kind << ": " << few;
    // Something was read at all.
    EXPECT_GT(many, few * factor / 4) << kind << ": " << few;
}

} // namespace

TEST(LongLists, EnumValues)
{
    ExpectLinear("Enum", "", "<value>v</value>", "");
}

TEST(LongLists, RampPoints)
{
    ExpectLinear("Ramp", "<type>scalar</type><defaultvalues>", "{0,0},", "</defaultvalues>");
}

TEST(LongLists, NumbersOfAVector)
{
    ExpectLinear("Vector3", "<defaultvalue>", "1,", "</defaultvalue>");
}

TEST(LongLists, MembersOfAGroup)
{
    ExpectLinear("Group", "<parameters>", "<Bool><name>M</name></Bool>", "</parameters>");
}

#endif
