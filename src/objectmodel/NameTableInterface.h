#pragma once

#include <memory>
#include <string>
#include <string_view>

namespace pipespec {

// The tree of attribute and chapter names. Inner nodes are sub-trees, leaves
// are the texts of the database's configuration; the logic only ever compares
// and passes them on. A leaf a node lacks is a configuration error.
class INameTable {
public:
    virtual ~INameTable() = default;

    virtual std::shared_ptr<const INameTable> SubTree(std::string_view name) const = 0;
    virtual const std::string& Leaf(std::string_view name) const = 0;
    virtual bool IsBaseDatabase() const = 0;

    // Sub-trees.
    const INameTable& Range() const { return node("Range"); }
    const INameTable& Pipe() const { return node("Pipe"); }
    const INameTable& GD() const { return node("GD"); }
    const INameTable& Sele() const { return node("Sele"); }
    const INameTable& Connection() const { return node("Connection"); }
    const INameTable& NominalDiameter() const { return node("NominalDiameter"); }
    const INameTable& TextSource() const { return node("TextSource"); }
    const INameTable& StateOwner() const { return node("StateOwner"); }
    const INameTable& PDMSNames() const { return node("PDMSNames"); }
    const INameTable& E3DNames() const { return node("E3DNames"); }
    const INameTable& NormDimension() const { return node("NormDimension"); }

    // Leaves.
    const std::string& NameRange() const { return Leaf("NameRange"); }
    const std::string& PDMS() const { return Leaf("PDMS"); }
    const std::string& SelectorChapter() const { return Leaf("SelectorChapter"); }
    const std::string& NameRangeListAttr() const { return Leaf("NameRangeListAttr"); }
    const std::string& NameRangeUpperAttr() const { return Leaf("NameRangeUpperAttr"); }
    const std::string& NameRangeLowerAttr() const { return Leaf("NameRangeLowerAttr"); }
    const std::string& VSTD() const { return Leaf("VSTD"); }
    const std::string& First() const { return Leaf("First"); }
    const std::string& Second() const { return Leaf("Second"); }
    const std::string& Selector() const { return Leaf("Selector"); }
    const std::string& Answer() const { return Leaf("Answer"); }
    const std::string& NextQuestion() const { return Leaf("NextQuestion"); }
    const std::string& DefaultAnswer() const { return Leaf("DefaultAnswer"); }
    const std::string& ConnectionChapter() const { return Leaf("ConnectionChapter"); }
    const std::string& PDMSFlag() const { return Leaf("PDMSFlag"); }
    const std::string& FunctionTypeAttr() const { return Leaf("FunctionTypeAttr"); }
    const std::string& NameGenerationOff() const { return Leaf("NameGenerationOff"); }
    const std::string& LayoutChapterPrefix1() const { return Leaf("LayoutChapterPrefix1"); }
    const std::string& LayoutChapterPrefix2() const { return Leaf("LayoutChapterPrefix2"); }
    const std::string& LayoutAttr1() const { return Leaf("LayoutAttr1"); }
    const std::string& TextAttr() const { return Leaf("TextAttr"); }
    const std::string& E3DChapter() const { return Leaf("E3DChapter"); }
    const std::string& PDMSChapter() const { return Leaf("PDMSChapter"); }
    const std::string& GeneratedNameAttr() const { return Leaf("GeneratedNameAttr"); }
    const std::string& State() const { return Leaf("State"); }
    const std::string& MatxtSource() const { return Leaf("MatxtSource"); }
    const std::string& SourceLinkAttr() const { return Leaf("SourceLinkAttr"); }
    const std::string& NormDimensionRef() const { return Leaf("NormDimensionRef"); }
    const std::string& ElementRangeAttr() const { return Leaf("ElementRangeAttr"); }
    const std::string& QuestionTemplate2() const { return Leaf("QuestionTemplate2"); }
    const std::string& VFCD() const { return Leaf("VFCD"); }
    const std::string& DefaultQuestion() const { return Leaf("DefaultQuestion"); }
    const std::string& SelectorType() const { return Leaf("SelectorType"); }
    const std::string& NormLower() const { return Leaf("NormLower"); }
    const std::string& NormUpper() const { return Leaf("NormUpper"); }
    const std::string& SelectorRoot() const { return Leaf("SelectorRoot"); }
    const std::string& BranchValueAttr() const { return Leaf("BranchValueAttr"); }
    const std::string& ElementCheckOn() const { return Leaf("ElementCheckOn"); }
    const std::string& TubeRule() const { return Leaf("TubeRule"); }

private:
    const INameTable& node(std::string_view name) const { return *SubTree(name); }
};

}  // namespace pipespec
