#pragma once

#include "tools/shaderassembler/shaderprogram.h"

// Reads a source text line by line and goes on past errors, so that one run tells them all.
class TShaderParser
{
public:
    // `fileName` stands in the messages.
    explicit TShaderParser(std::string fileName) : FileName(std::move(fileName)) {}

    // False with messages of the form "file:line: what is wrong".
    bool Parse(const std::string& text);
    const TShaderProgram& GetProgram() const { return Program; }
    const std::vector<std::string>& GetErrors() const { return Errors; }

private:
    void ParseLine(const std::string& line);
    void ParseKind(const std::vector<std::string>& words);
    bool ParseDeclaration(const std::vector<std::string>& words);
    void DeclareAttribute(const std::vector<std::string>& words);
    void DeclareSampler(const std::vector<std::string>& words);
    void DeclareValue(const std::vector<std::string>& words, bool literal);
    bool CheckNewName(const std::string& name);
    bool CheckSlots(const TNamedValue& value);

    void ParseInstruction(const std::string& mnemonic, const std::string& operands);
    bool ParseDestination(const std::string& text, TDestination& result);
    bool ParseSource(const std::string& text, const TOpcode& opcode, TSource& result);
    bool ParseRegister(const std::string& name, TSource& result);
    bool ParseSampler(const std::string& text, int& result);
    void CheckPorts(const TInstruction& instruction);
    void CheckReads(const TInstruction& instruction);
    void NoteWrite(const TDestination& destination);
    void CheckEnd();
    int FindValue(const std::string& name) const;

    void Fail(const std::string& message);

    std::string FileName;
    int Line = 0;
    bool KindGiven = false;
    TShaderProgram Program;
    std::vector<std::string> Errors;
    // The components that have been written, per temporary.
    std::array<unsigned, 16> Written = {};
    bool PositionWritten = false;
};
