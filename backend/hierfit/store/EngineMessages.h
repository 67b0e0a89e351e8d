// The keys of the engine's messages.
#pragma once

/// They arrive as `WarningData::fPattern` of the document or of one block of means, and are keys of
/// the string table, too. Those without a word here steer nothing: the module passes them over.
inline constexpr char kGLMM_C8[] = "kGLMM_C8";    ///< document: no subjects; no scale for blocks
inline constexpr char kGLMM_C9[] = "kGLMM_C9";    ///< document: no subjects; fixed parameters
inline constexpr char kGLMM_C10[] = "kGLMM_C10";  ///< document: a note on covariance parameters
inline constexpr char kGLMM_C11[] = "kGLMM_C11";
inline constexpr char kGLMM_C12[] = "kGLMM_C12";
inline constexpr char kGLMM_C13[] = "kGLMM_C13";
inline constexpr char kGLMM_C14[] = "kGLMM_C14";
inline constexpr char kGLMM_C15[] = "kGLMM_C15";
inline constexpr char kGLMM_C16[] = "kGLMM_C16";
inline constexpr char kGLMM_C17[] = "kGLMM_C17";
inline constexpr char kGLMM_C18[] = "kGLMM_C18";      ///< document: captions of covariance tables
inline constexpr char kGLMM_C19_1[] = "kGLMM_C19_1";  ///< block: no contrasts
inline constexpr char kGLMM_C20[] = "kGLMM_C20";      ///< block: no chart of the means
inline constexpr char kGLMM_C21[] = "kGLMM_C21";
inline constexpr char kGLMM_C22[] = "kGLMM_C22";
inline constexpr char kGLMM_C23[] = "kGLMM_C23";  ///< document: as C18, but for an ordinal target
inline constexpr char kGLMM_C24[] = "kGLMM_C24";  ///< document: more means than are computed
inline constexpr char kGLMM_C25[] = "kGLMM_C25";  ///< block: no means, and so nothing else
inline constexpr char kGLMM_C26[] = "kGLMM_C26";  ///< document: a subject field that is not used
inline constexpr char kGLMM_C27[] = "kGLMM_C27";
inline constexpr char kGLMM_C28[] = "kGLMM_C28";  ///< document: captions of covariance tables
inline constexpr char kGLMM_C29[] = "kGLMM_C29";
inline constexpr char kGLMM_C30[] = "kGLMM_C30";
