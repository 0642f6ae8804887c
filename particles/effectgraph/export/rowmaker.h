#pragma once

#include "particles/effectgraph/export/commandstream.h"
#include "particles/effectgraph/export/rowconversion.h"

// Collects the small commands that make rows from rows, beside the commands that nodes tell.
class TRowMaker
{
public:
    // Of the group's temporary rows. Constants are made anew.
    explicit TRowMaker(int& numTemps) : NumTemps(&numTemps) {}

    uint32_t AllocTemp() { return RowTemp + static_cast<uint32_t>((*NumTemps)++); }
    // A row that holds the number, the same for each number.
    uint32_t GetConstant(float value);
    void SetRow(uint32_t row, float value);
    void CopyRow(uint32_t from, uint32_t to);
    // Writes one row of the conversion. `source` holds the rows of the value, as many as its type has.
    void Convert(const TRowConversion& conversion, int row, const uint32_t* source, uint32_t to);

    bool IsEmpty() const { return Values.empty() && Commands.empty(); }
    // Tells the constants, then the commands in their order. The constants stay where they are.
    void Flush(TCommandStream& stream);

private:
    struct TConstant
    {
        float Value;
        uint32_t Row;
    };

    TCommand& Add(const char* name, uint32_t to);
    void AddCommand(const char* name, uint32_t a, uint32_t b, uint32_t to);
    void MakeLength(const uint32_t* source, int count, uint32_t to);
    void MakeMean(const uint32_t* source, uint32_t to);

    int* NumTemps;
    vector<TConstant> Constants;
    // What of them is still to be told.
    vector<float> Values;
    vector<uint32_t> Rows;
    vector<TCommand> Commands;
};
