// The custom procedure framework: the base class of a procedure, its metadata, the XML wrapper of
// the result documents, values of fields and the conversions of text.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "host/dictionary.h"

class BpProcedure;
class SDOMXMLIterator;

/// Metadata of one field of the model's data.
class CFField {
 public:
  /// Type code: 1 categorical, 2 ordinal, 3 continuous, 0 unknown.
  virtual int32_t GetType() const = 0;

 protected:
  ~CFField() = default;
};

/// Metadata of all fields; a field has the index of the dictionary's variable of the same name.
class CFMetaData {
 public:
  virtual int32_t FieldCount() const = 0;
  /// The field at an index, or null when there is none.
  virtual const CFField* GetField(int32_t index) const = 0;
  /// The index of the field of this name; negative when there is none.
  virtual int32_t GetFieldIndex(const std::string& name) const = 0;

 protected:
  ~CFMetaData() = default;
};

/// One StatXML result of the engine.
struct StatXMLBlock {
  std::string fDocumentText;  ///< the StatXML document, UTF-8
};

/// Base class of every custom procedure. The framework sets the three members before it calls
/// `GenerateOutput` once; it owns what they point to, all of which outlives the procedure.
class CFProcCustom {
 public:
  CFProcCustom() = default;
  CFProcCustom(BpProcedure* procedure, ProcedureDataSource* dataSource)
      : fpProcedure(procedure), fpDataSource(dataSource) {}
  CFProcCustom(const CFProcCustom&) = default;
  CFProcCustom& operator=(const CFProcCustom&) = default;
  virtual ~CFProcCustom() = default;

  /// Whether the procedure can take documents.
  virtual bool IsReady() = 0;
  /// Writes the whole output from one PMML text and one StatXML block. False when the documents
  /// could not be read; then no output was written.
  virtual bool GenerateOutput(const std::vector<std::string>& vPMMLStr,
                              const std::vector<StatXMLBlock>& vStatXMLBlocks,
                              const std::string& summaryXMLStr) = 0;
  virtual bool GenerateDocumentOutput(const std::string& pmmlStr,
                                      const StatXMLBlock& statXMLBlock) = 0;

  BpProcedure* fpProcedure = nullptr;           ///< every table and heading is opened on it
  ProcedureDataSource* fpDataSource = nullptr;  ///< the active data dictionary
  const CFMetaData* fpMetaData = nullptr;       ///< the field metadata of the model's data
};

/// An element of a document, or, when constructed, the root that holds a document and everything
/// handed out from it. Names are local names; name spaces and prefixes are passed over. Look-ups
/// walk direct children only. The last argument of the look-ups is always true.
class SDOMXMLWrapper {
 public:
  SDOMXMLWrapper();
  ~SDOMXMLWrapper();
  SDOMXMLWrapper(const SDOMXMLWrapper&) = delete;
  SDOMXMLWrapper& operator=(const SDOMXMLWrapper&) = delete;

  /// Parses a text and gives its root element, which is this wrapper; null when the text is not
  /// well-formed or is refused. Called once, on a root.
  SDOMXMLWrapper* LoadFromString(const std::string& text);

  /// The first element, in document order, that the whole "/"-separated path reaches. False, with
  /// `element` null, when there is none. The element belongs to the root.
  bool GetFirstElement(std::string_view path, SDOMXMLWrapper** element, bool flag);
  /// An iterator over all children of this name. False, with `iterator` null, when there are none.
  /// The iterator belongs to the root.
  bool GetElementIterator(std::string_view name, SDOMXMLIterator** iterator, bool flag);

  /// False when the attribute is absent; what `value` holds then is up to the host.
  bool GetAttribute(std::string_view name, std::string& value);
  /// The items of an `Array` element, in place of what `items` held; false, with `items` empty,
  /// when they cannot be read (an open quote, or a count that differs from the attribute `n`).
  bool GetSimpleArray(std::vector<std::string>& items);

 private:
  struct Impl;
  friend class SDOMXMLIterator;
  explicit SDOMXMLWrapper(Impl* element) : impl_(element) {}

  Impl* impl_;  ///< this element; each host defines what it is
};

/// A walk over children of one name, in document order.
class SDOMXMLIterator {
 public:
  ~SDOMXMLIterator();  // NOLINT(performance-trivially-destructible): what it does, a host says.
  SDOMXMLIterator(const SDOMXMLIterator&) = delete;
  SDOMXMLIterator& operator=(const SDOMXMLIterator&) = delete;

  /// The next element, which belongs to the root; false, with `element` null, at the end.
  bool Next(SDOMXMLWrapper** element);

 private:
  struct Impl;
  friend class SDOMXMLWrapper;
  explicit SDOMXMLIterator(Impl* walk) : impl_(walk) {}

  Impl* impl_;
};

/// A value of a field: its text and, once loaded, the observed value that the text stands for.
class CFStatVariableValue {
 public:
  CFStatVariableValue() = default;
  explicit CFStatVariableValue(std::string text) : text_(std::move(text)) {}

  /// Sets the text and forgets an observed value.
  void SetStringValue(const std::string& text);
  const std::string& GetStringValue() const { return text_; }

  /// Turns the text into an observed value of the variable; false when the variable is null, or is
  /// numeric and the text as a whole is no number. The flag is always 0.
  bool LoadObsValue(const VELT_Variable* variable, int32_t flag);
  /// `SetStringValue`, then `LoadObsValue`.
  bool SetCompleteValue(const std::string& text, const VELT_Variable* variable, int32_t flag);
  /// The observed value, or null when none is loaded. Valid until this value changes.
  const OBS* GetObsValue() const { return value_ ? &*value_ : nullptr; }

 private:
  std::string text_;
  std::optional<OBS> value_;
};

/// The number that a whole text stands for; the system-missing number when it is none. A number is
/// an optional sign, digits with at most one ".", and an optional exponent, in any locale.
double String2Double(const std::string& text);
/// The whole number that a text of a sign and digits stands for; 0 for any other text and for a
/// number beyond 32 bits.
int32_t String2Integer(const std::string& text);
/// The value of a well-formed Roman numeral in capitals, else 0.
int32_t Roman2Integer(const std::string& text);
