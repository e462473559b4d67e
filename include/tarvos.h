/*
 * tarvos.h - the C interface of the Tarvos checking engine.
 *
 * Tarvos checks Chinese reports, theses and contracts: fonts, sizes and line
 * spacing against an organisation's template, the table of contents, heading
 * numbering, required texts, misspelt words and audit rules over extracted
 * values. A host initialises the engine once, creates checking instances and
 * hands each a document; every finding comes back as XML or JSON.
 *
 * A session:
 *   1. TARVOS_Init(data_dir)               start the shared services; creates handle 0
 *   2. h = TARVOS_NewInstance()            optional: one more instance per thread
 *   3. TARVOS_CheckReportF(file, ..., h)   check a document; returns the result
 *   4. TARVOS_GetResult(type, h)           read stored result texts again
 *   5. TARVOS_DeleteInstance(h)            optional: release the instance early
 *   6. TARVOS_Exit()                       stop the services, delete every instance
 *
 * Conventions (each declaration below states only its exceptions):
 *
 *   Status codes. Functions returning int return 1 (or a count, or a handle)
 *   on success and 0 or a negative number on failure. After any failure the
 *   reason is in TARVOS_GetLastErrorMsg(). Unknown non-zero negative codes
 *   are failures too; more may be added.
 *
 *   Handles. A checking instance is named by an int handle, its index in the
 *   engine's instance table. Handles grow monotonically and are never reused
 *   within one initialisation; a deleted handle stays invalid. Any call with an
 *   invalid or deleted handle fails and sets the last error "TARVOS not init!".
 *
 *   Text. Every string passed in or returned is UTF-8 and zero-terminated.
 *   File names are converted to the process locale's code page before they are
 *   opened. The engine copies every input string before the call returns, so
 *   the caller may free or reuse its buffers at once. A NULL string argument is
 *   refused with the function's failure status, except where a declaration
 *   gives NULL a meaning.
 *
 *   Returned text is owned by the engine; never free it, copy it to keep it.
 *   Each function returning const char* names one of these lifetimes:
 *     STATIC    constant text, valid while the library is loaded.
 *     INSTANCE  owned by the instance `handle`, which keeps the latest text
 *               of each call (of each result type for TARVOS_GetResult);
 *               valid until the same call on that instance returns again,
 *               or the instance is deleted (TARVOS_DeleteInstance or
 *               TARVOS_Exit). An instance does not grow with the number of
 *               calls made on it.
 *     SERVICE   owned by a process-wide service; valid until the next call
 *               of the same family that returns text, or TARVOS_Exit.
 *     THREAD    a copy kept for the calling thread; valid until this thread's
 *               next call of the same function.
 *
 *   Exceptions and crashes. No function throws or aborts on bad input: every
 *   failure is reported through the status and the last-error text.
 *
 *   Threads. TARVOS_Init and TARVOS_Exit must not overlap any other call. One
 *   instance is used by one thread at a time; different instances may be used
 *   from different threads at once, and give the results a sequential run
 *   would. Calls that change a shared service (template and rule editing,
 *   dictionary and catalogue imports) may come from any thread at any time:
 *   they wait until running checks end, and checks started meanwhile wait
 *   for them, so a check sees a service wholly before or wholly after a
 *   change. TARVOS_GetLastErrorMsg is the last failure of the whole process;
 *   a host checking on several threads reads its own thread's reason with
 *   TARVOS_GetThreadLastErrorMsg.
 *
 *   Services still being built. A call whose service is not available in this
 *   build fails with its documented status and a last-error text that names
 *   the missing service.
 */
#ifndef TARVOS_H
#define TARVOS_H

#include <stdbool.h>

#if defined(TARVOS_BUILDING_LIBRARY)
#define TARVOS_API __attribute__((visibility("default")))
#else
#define TARVOS_API
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* ===================================================================== */
/* Start-up, shut-down and the shared dictionaries                        */
/* ===================================================================== */

/* Starts the engine on a data directory (the folder that holds "Data/").
   NULL or "" means the current working directory; a path starting with "."
   is taken relative to the working directory; any other path is used as is.
   Reads "Data/ZYG-Configure.json" for the feature switches (a missing file
   keeps the defaults). Creates instance 0.
   Returns 1 on success; -1 the rule engine did not start (e.g. the directory
   does not exist); -5 the format checker could not be created; -6 the message
   catalogue "Data/Error/ErrorMessage.dat" was not loaded; -7 the font-size
   table "Data/Font/FontSize.dat" was not loaded (needed only when format
   checking is on). */
TARVOS_API int TARVOS_Init(const char* sInitDirPath);

/* Stops every service and deletes every instance; all INSTANCE and SERVICE
   texts die here. Safe to call when not initialised. */
TARVOS_API void TARVOS_Exit(void);

/* Merges a text list of error messages ("id message each_score max_score" per
   line after one header line) into the catalogue, then saves the catalogue to
   "../Data/Error/ErrorMessage.dat" relative to the working directory that
   TARVOS_Init saw. Returns the number of ids saved; 0 when not initialised;
   -1 when the list cannot be read (the catalogue is then left as it was) or
   the catalogue cannot be written. */
TARVOS_API int TARVOS_ImportErrorMsg(const char* sErrorListFile);

/* Adds a list of similar words to the similar-word dictionary.
   Returns the number of entries imported; 0 on failure. */
TARVOS_API int TARVOS_ImportSimDict(const char* sSimDictFile);

/* Adds a list of misspellings and corrections to the spelling dictionary and
   hands its words to the segmenter. Returns the segmenter's count of imported
   words; 0 on failure. */
TARVOS_API int TARVOS_ImportSpellErrorDict(const char* sSpellErrorDict);

/* Imports a user dictionary into the segmenter (lines "word<TAB>tag").
   Returns the number of words imported; 0 on failure. */
TARVOS_API int TARVOS_ImportUserDict(const char* sUserDict);

/* Imports a keyword dictionary into list 0 of the engine's keyword scanner
   (see KS_ImportUserDict for the format). Returns the number of keywords
   and expressions imported; 0 on failure, also when the scanner is off
   ("FilterCheck"). */
TARVOS_API int TARVOS_ImportFieldDict(const char* sFiledDictFile, bool bPinyinAbbrevNeeded,
                                      bool bOverwrite);

/* The text of the last failure in the process (any thread), or "" if none.
   Owner: engine (THREAD). Never NULL. */
TARVOS_API const char* TARVOS_GetLastErrorMsg(void);

/* The text of the calling thread's own last failure, or "" if it never
   failed: what a host checking on several threads reads after a call on
   this thread failed. Owner: engine (THREAD). Never NULL. */
TARVOS_API const char* TARVOS_GetThreadLastErrorMsg(void);

/* What the started engine runs, as JSON: "version", "data_directory",
   "switches" (each switch of the configuration as true or false, and
   "SpellCheckIP"), "services" (which started, with the number of document
   types, templates, font sizes and messages) and "instances".
   Owner: engine (THREAD). NULL with "TARVOS not init!" before TARVOS_Init. */
TARVOS_API const char* TARVOS_GetEngineInfo(void);

/* The library's version, "MAJOR.MINOR.PATCH"; the soname carries MAJOR.
   Owner: STATIC. Needs no TARVOS_Init. */
TARVOS_API const char* TARVOS_GetVersion(void);

/* Segments a UTF-8 text with the engine's lexical analyser (its lexicon and
   the user words imported so far): "word/tag" tokens separated by blanks,
   or the words alone without bTags. Owner: engine (THREAD). NULL on failure. */
TARVOS_API const char* TARVOS_SegmentText(const char* sText, bool bTags);

/* Checks the spelling of a UTF-8 text with the engine's own spelling check
   (started when "SpellCheck" is on): a JSON array with one object per
   proposed correction, in order of offset: "offset" (byte offset of the
   written word in sText), "org" (the written word) and "revise" (the word
   to write); "[]" when nothing is suspect. Checks of documents report the
   same corrections as findings "1.5.1". Owner: engine (THREAD). NULL with
   "The spelling check not init!" when the check did not start (switched
   off, or its data or language model missing: the error log says which). */
TARVOS_API const char* TARVOS_CheckSpelling(const char* sText);

/* ===================================================================== */
/* Instances                                                              */
/* ===================================================================== */

/* Creates a checking instance. Returns its handle (>= 1; handle 0 is made by
   TARVOS_Init), or -1 when the engine is not initialised. */
TARVOS_API int TARVOS_NewInstance(void);

/* Deletes an instance and every INSTANCE text it owns. Returns 1 (also for an
   already deleted handle), 0 for a handle outside the table. */
TARVOS_API int TARVOS_DeleteInstance(int handle);

/* Checks a document file (DOCX; other office formats are converted first).
   nType: report type selecting rules and templates; sOrgnization: the
   organisation whose template applies (may be ""); nResultFormat: 0 XML,
   1 JSON, any other value JSON written into a "_Check.xml" file.
   The result file "<name>_Check.xml" or "<name>_Check.json" lands beside the
   document, and the structure file "<name>.xml" (format 0) or "<name>.json"
   beside it. Returns, for format 0, the result file's path; otherwise the
   JSON text. Owner: instance (INSTANCE). NULL on failure.
   The XML result inserts texts as they are, without escaping: it is not
   well-formed XML when a text holds "<" or "&". The JSON result is. */
TARVOS_API const char* TARVOS_CheckReportF(const char* sReportFile, const char* sURLPrefix,
                                           const char* sOrgnization, int nType,
                                           int nResultFormat, bool bDebug, int handle);

/* Checks a plain text held in memory. sURLPrefix is not used. Returns the
   rendered result text. Owner: instance (INSTANCE). NULL on failure. */
TARVOS_API const char* TARVOS_CheckReportM(const char* sReportTxt, const char* sURLPrefix,
                                           const char* sOrgnization, int nType,
                                           int nResultFormat, bool bDebug, int handle);

/* A stored result of the last check: 0 the rendered findings, 1 the
   knowledge-graph result, 6 the single key-value result, 7 the tuple result,
   8 the entity key-value result. Each result type keeps its latest copy.
   Owner: instance (INSTANCE). NULL on failure or for another result_type. */
TARVOS_API const char* TARVOS_GetResult(int result_type, int handle);

/* Loads a saved document structure file into the instance's model.
   Returns what the model's loader returns (> 0 on success); 0 on failure. */
TARVOS_API int TARVOS_LoadDocResult(const char* sResultXMLFile, int handle);

/* Imports a document and writes its structure file "<name>.xml" beside it
   (the working folder's parent). Returns that file's path. Owner: instance
   (INSTANCE). NULL on failure.
   The structure XML escapes only "<" and ">" in texts: it is not well-formed
   XML when a text holds "&", and a text holding "&lt;" itself reads back as
   "<". TARVOS_ImportDocFormat writes the well-formed JSON form. */
TARVOS_API const char* TARVOS_ImportDoc(const char* sReportFile, const char* sURLPrefix,
                                        int handle);

/* As TARVOS_ImportDoc, with the structure file's form chosen: nResultFormat
   0 writes "<name>.xml", any other value the well-formed JSON "<name>.json"
   (with the tables and figures). Returns the file's path. Owner: instance
   (INSTANCE, the text of TARVOS_ImportDoc). NULL on failure. */
TARVOS_API const char* TARVOS_ImportDocFormat(const char* sReportFile, const char* sURLPrefix,
                                              int nResultFormat, int handle);

/* Applies the findings of a saved result (the "_Check.xml" or "_Check.json"
   a check wrote, with the findings the user rejects deleted from it) to the
   checked DOCX: texts, fonts, sizes, heading styles and line spacing are
   edited, findings about the whole document are listed at its end, and a
   finding that cannot be applied is skipped (its reason goes to the error
   log). The working folder's "word/document.xml" is edited in place and
   packed as "<name>_Revised_<YYYYmmddHHMMSS>.docx" beside the document,
   which stays untouched. Returns that path. Owner: instance (INSTANCE).
   NULL when the result or the document cannot be read or the DOCX cannot
   be written. */
TARVOS_API const char* TARVOS_ReviseReportF(const char* sReviseXMLFile, int handle);

/* As TARVOS_ReviseReportF, but every edit is written as a Word tracked change
   by sAuthor (NULL or "" is "Tarvos"): deleted and inserted text in w:del and
   w:ins runs, changed fonts, sizes, styles and spacing with their old values
   in w:rPrChange / w:pPrChange, and each applied finding's message as a
   comment on its paragraph, so a reviewer accepts or rejects each edit in a
   word processor. Owner: instance (INSTANCE). NULL on failure. */
TARVOS_API const char* TARVOS_ReviseReportTracked(const char* sReviseXMLFile, const char* sAuthor, int handle);

/* Redraws the HTML pages of a checked document from a saved, possibly edited,
   result. Returns NULL on success and the error text on failure (an inverted
   convention, kept for existing hosts): this thread's last error. Owner of
   the error text: engine (THREAD). An invalid handle returns NULL too. */
TARVOS_API const char* TARVOS_ShowHtmlError(const char* sReviseXMLFile, int handle);

/* Runs the format check again from a saved result with another template.
   Returns as TARVOS_CheckReportF. Owner: instance (INSTANCE). NULL on
   failure, also with "No template <id>" for a template the store does not
   hold. */
TARVOS_API const char* TARVOS_ReCheckFormat(const char* sCheckXML, int nTemplateID,
                                            int nResultFormat, int handle);

/* Describes the template chosen for the instance's document: a JSON object
   with "docReportType", "zyg_organization", "zyg_area" and "zyg_argument",
   the keys the format check looks the template up by.
   Owner: instance (INSTANCE). NULL on failure. */
TARVOS_API const char* TARVOS_GetCurTemplateInfo(int handle);

/* Runs one rule (rule_id) of report type `type` over one line of text on the
   checker instance `handle`. Owner: instance (INSTANCE). NULL on failure. */
TARVOS_API const char* ZYG_ScanTextMem(const char* sLine, int rule_id, int type, int handle);

/* Extracts knowledge from a text in a new instance of its own, which lives
   until TARVOS_Exit, so every returned text stays valid until then.
   Owner: engine (INSTANCE of that hidden instance). NULL on failure. */
TARVOS_API const char* TARVOS_ExtractKnowledge(const char* sText, int nType);

/* Checks every document of a folder (doc*, wps, pdf, txt) with nThreadCount
   worker threads; each result file lands beside its document. Returns the
   number of files found in the folder, or -1 when a thread cannot start. */
TARVOS_API int TARVOS_CheckReportDir(const char* sReportDir, const char* sOrgnization,
                                     int nType, int format, int nThreadCount);

/* ===================================================================== */
/* Templates (available when format checking is on)                       */
/* ===================================================================== */

/* Learns a template from a sample DOCX for report type, organisation, area
   and argument ("*" files it as the wildcard of that key). In the sample,
   required texts stand between the markers KKK and GGG. Returns the
   template's id (from 0; the same keys again replace that template); a
   negative number on failure, 0 when format checking is off. */
TARVOS_API int TARVOS_ImportTemplate(const char* sTemplateFile, int nType, const char* sOrg,
                                     const char* sArea, const char* sArgumemt);

/* Replaces template nTemplateID (without a file only its keys change).
   Returns nTemplateID; -1 with "No template <id>" for an id the store does
   not hold (nothing is written then); 0 when format checking is off. */
TARVOS_API int TARVOS_EditTemplate(int nTemplateID, const char* sTemplateFile, int nType,
                                   const char* sOrg, const char* sArea, const char* sArgumemt);

/* The id of the template that fits; "*" matches any value. 0 or negative
   when none fits or on failure. */
TARVOS_API int TARVOS_FindTemplate(int nType, const char* sOrg, const char* sArea,
                                   const char* sArgumemt);

/* Deletes a template; later ids shift down by one. Returns the id; -1 for
   an unknown id, 0 when format checking is off. */
TARVOS_API int TARVOS_DeleteTemplate(int nTemplateID);

/* One template as JSON text with the keys "docReportType",
   "zyg_organization", "zyg_argument", "zyg_area" and "zyg_format" (the
   template text). Its values are written as they are, unescaped, so the
   text is not well-formed JSON: the template text holds line breaks and may
   hold quotes. TARVOS_GetTemplateJson gives the same object well-formed.
   Owner: engine (THREAD). "" for an unknown id; NULL when format checking
   is off. */
TARVOS_API const char* TARVOS_GetTemplate(int nTemplateID);

/* The template of TARVOS_GetTemplate as well-formed JSON (jsoncpp's
   escaping). Owner: engine (THREAD). "" for an unknown id; NULL when format
   checking is off. */
TARVOS_API const char* TARVOS_GetTemplateJson(int nTemplateID);

/* Number of templates in the store; 0 on failure. */
TARVOS_API int TARVOS_GetTemplateCount(void);

/* The arguments and areas known for a report type and organisation, as JSON
   (names unescaped, as TARVOS_GetTemplate's values). Owner: engine (THREAD).
   NULL when format checking is off. */
TARVOS_API const char* TARVOS_GetTemplateList(int docType, const char* sOrgnization);

/* ===================================================================== */
/* Rule engine: rule and audit-rule editing                                */
/* ===================================================================== */
/* Text results below are owned by the rule manager (SERVICE: valid until the
   next rule-engine call returning text, or TARVOS_Exit) and are "" on failure.
   Int results are >= 0 on success and -1 on failure. */

/* Imports "<audits>" rule text from a file or from memory for report type
   nType, replacing the type's rules when bOverwrite. Returns the count of
   rules; 0 or -1 on failure. */
TARVOS_API int TARVOS_ImportZYGRules(const char* sRuleFile, bool bOverwrite, int nType);
TARVOS_API int TARVOS_ImportZYGRulesFromMem(const char* sRuleText, bool bOverwrite, int nType);
/* Adds one audit rule in rule text and saves the type's audit rules. */
TARVOS_API int TARVOS_AddAuditRule(const char* sAuditRule, int nType);

TARVOS_API const char* ZYG_GetSysInfo(void);
TARVOS_API const char* ZYG_GetRuleListId(int type);
TARVOS_API const char* ZYG_GetRuleInfo(int rule_id, int type);
TARVOS_API int ZYG_DelRule(int rule_id, int type);
TARVOS_API int ZYG_AddRule(const char* sJsonStr, int type);
TARVOS_API int ZYG_EditRule(int rule_id, const char* sJsonStr, int type);

TARVOS_API const char* Audit_GetSysInfo(int type);
/* The error-message catalogue as JSON. Owner: engine (THREAD). */
TARVOS_API const char* Audit_GetErrorInfo(void);
TARVOS_API const char* Audit_GetRuleListId(int type);
TARVOS_API const char* Audit_GetRuleInfo(int rule_id, int type);
TARVOS_API int Audit_DelRule(int rule_id, int type);
TARVOS_API int Audit_AddRule(const char* sJsonStr, int type);
TARVOS_API int Audit_EditRule(int rule_id, const char* sJsonStr, int type);

/* ===================================================================== */
/* Rule engine: scanning texts and documents with numbered rule sets       */
/* ===================================================================== */
/* These calls have their own instance table. TARVOS_Init calls ZYG_Init and
   TARVOS_Exit calls ZYG_Exit; a host using only the scanning calls may call
   them itself. Text results are owned by the scanning instance, which keeps
   the latest text of each call: valid until the same call on that instance
   returns again, its deletion or ZYG_Exit. They are "" on failure. */

/* Starts the lexical analyser on a data directory (NULL or "" = working
   directory) and opens scanning instance 0. Returns 1; -1 when the directory
   cannot be read. */
TARVOS_API int ZYG_Init(const char* sInitDirPath);
TARVOS_API void ZYG_Exit(void);
/* Opens the rule set of a report type. Returns the new handle; -1 before ZYG_Init. */
TARVOS_API int ZYG_NewInstance(int nDocType);
/* Returns 1, or 0 for a handle outside the table. */
TARVOS_API int ZYG_DeleteInstance(int handle);
TARVOS_API int ZYG_ImportRule(const char* sXMLFile, bool bOverwrite, int handle);
TARVOS_API const char* ZYG_ScanText(const char* sText, int nParaId, int handle);
TARVOS_API const char* ZYG_ScanDocXML(const char* sDocXML, bool bDebug, int handle);
TARVOS_API const char* ZYG_ScanDoc(const char* sDocFile, int nDocType, bool bDebug, int handle);
TARVOS_API const char* ZYG_ScanTextFile(const char* sTextFile, bool bDebug, int handle);
/* Same text as TARVOS_GetLastErrorMsg. Owner: engine (THREAD). Never NULL. */
TARVOS_API const char* ZYG_GetLastErrorMsg(void);

/* ===================================================================== */
/* Keyword scanner: keyword lists, expressions and error words             */
/* ===================================================================== */
/* Keyword lists live in "<data>/KeyScanner/Filter<handle>_*", one list per
   handle 0..1023. TARVOS_Init starts the engine's scanner when "FilterCheck"
   is on; the KS_ calls use it unless KS_Init started a scanner of their own
   (KS_Init and KS_Exit must not overlap other KS_ calls). Scans may run on
   many threads, also while a list is imported: a scan sees a list whole,
   before or after the import.

   A user dictionary has one entry a line (at most 3072 bytes), read as
   "keyword class weight pinyin_flag" (class "filter", weight 1, flag 0 when
   missing); "[key word] class" holds a keyword with blanks. A keyword must be
   longer than one byte and than one Chinese character. The keyword field may
   also be an expression: "A&B" (both occur), "A&!C" (A without C),
   "A~5~B" (B starts at most 5 characters after A ends), clauses joined by
   "&"; or a correction pair "wrong-->right". Keywords of class "protect"
   are not reported and hide every other hit inside them. At most 255
   classes a list. */

/* Starts a scanner on a data directory and loads every list there (texts
   are UTF-8; nEncoding is accepted and ignored). Returns 1; 0 when the
   directory cannot be read or a list is damaged (the others are loaded). */
TARVOS_API int KS_Init(const char* sDataPath, int nEncoding);
/* Stops the scanner KS_Init started; the KS_ calls then use the engine's. */
TARVOS_API void KS_Exit(void);
/* Scans a UTF-8 text with list nHandle. Modes (offsets in bytes):
     0  the keywords found, "word/class" separated by blanks;
     1  a line per hit: "offset\tlength\tkind\tword\tclass\tweight\tcorrection",
        kind "keyword", "pinyin", "complex" or "correction";
     2  the hits as a JSON array of objects with those keys;
     3  the corrections, "(Check n)right-->wrong##right-->wrong$", in text order.
   "" when nothing is found, for another mode or an unknown handle; NULL
   when no scanner is started. Owner: engine (THREAD). */
TARVOS_API const char* KS_ScanDetail(const char* sText, int nMode, int nHandle);
/* Imports a user dictionary into list nHandle (created when new), onto the
   current list unless bOverwrite; bAbbrevNeeded adds pinyin initials to the
   pinyin of entries with flag 1. Refused lines are logged and skipped.
   Returns the number of keywords and expressions imported; 0 when the file
   cannot be read or the list cannot be built (the list and its files are
   then left as they were). */
TARVOS_API int KS_ImportUserDict(const char* sFilename, bool bAbbrevNeeded, bool bOverwrite, int nHandle);
/* Removes the keywords and expressions named by the lines of a file (same
   line format) from list nHandle. Returns the number removed; -1 on failure. */
TARVOS_API int KS_DeleteUserDict(const char* sFilename, int nHandle);
/* Writes list nHandle as "Word\tClass\tWeight" lines after that header.
   Returns the number of entries written; -1 on failure. */
TARVOS_API int KS_ExportKeyDict(const char* sFilename, int nHandle);
/* The scanner's last failure, "" if none. Owner: engine (THREAD). Never NULL. */
TARVOS_API const char* KS_GetLastErrorMsg(void);

#ifdef __cplusplus
}
#endif

#endif /* TARVOS_H */
