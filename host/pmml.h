// The PMML metadata library: the variables of the model that a PMML document describes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <memory>
#include <string>
#include <vector>

/// Outcome of a call of this library.
class MCStatus {
 public:
  explicit MCStatus(bool isError) : is_error_(isError) {}
  bool IsError() const { return is_error_; }

 private:
  bool is_error_;
};

/// One variable of the model. The order of the operations is part of the interface.
class IMCVariable {
 public:
  virtual ~IMCVariable() = default;

  /// Measure code: 1 continuous, 2 categorical, 3 ordinal, 0 unknown. 2 and 3 mean categorical.
  virtual int32_t MeasureCode() const = 0;
  virtual void FieldName(std::string& name) const = 0;
  /// Number of valid values that the document lists.
  virtual int32_t LevelCount() const = 0;
};

/// The model's variables, in the document's order. Owns them.
class MCVarList {
 public:
  MCVarList();
  ~MCVarList();
  MCVarList(const MCVarList&) = delete;
  MCVarList& operator=(const MCVarList&) = delete;

  int32_t Size() const;
  /// The variable at a position from 0 to `Size()` - 1; null outside it.
  const IMCVariable* GetVarAt(int32_t position) const;

 private:
  friend class MCPMMLParser;
  std::vector<std::unique_ptr<IMCVariable>> variables_;
};

/// Reads a PMML document.
class MCPMMLParser {
 public:
  MCPMMLParser();
  ~MCPMMLParser();
  MCPMMLParser(const MCPMMLParser&) = delete;
  MCPMMLParser& operator=(const MCPMMLParser&) = delete;

  /// An error when the text is not well-formed or describes no model.
  MCStatus ParseToDOM(std::istream& text);
  /// Appends the model's variables to `list`. `names` is always empty and the flag false: all
  /// variables are meant. An error when a mining field is no data field.
  MCStatus FillVarList(MCVarList* list, const std::vector<std::string>& names, bool flag);

 private:
  struct Impl;
  std::unique_ptr<Impl> impl_;
};
