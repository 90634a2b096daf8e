#pragma once

// Every word that the library reads from or writes into a file.
// DO NOT CHANGE A VALUE: files in the field hold it. The identifier is the word itself, so that a search for a
// word finds the format page, this line and every use. Where a word is no identifier of C++, an underscore
// follows it.

#include <cstddef>

namespace orvio::disk {

// Groups
inline constexpr char post[] = "post", constant[] = "constant", singlestate[] = "singlestate";
inline constexpr char multistate[] = "multistate", orvheader[] = "orvheader", mmc[] = "mmc";
inline constexpr char connectivities[] = "connectivities", attributes[] = "attributes";
inline constexpr char identifiers[] = "identifiers", variables[] = "variables", variable[] = "variable";
inline constexpr char variablegroup[] = "variablegroup", elements[] = "elements", system_[] = "system";
inline constexpr char collector[] = "collector", parts[] = "parts", indices[] = "indices", text[] = "text";
inline constexpr char entityresults[] = "entityresults", elementresults[] = "elementresults";
inline constexpr char multientityresults[] = "multientityresults";
inline constexpr char multielementresults[] = "multielementresults", activflags[] = "activflags";

// Parts of a block
inline constexpr char header[] = "header", data[] = "data", index[] = "index", orvblock[] = "orvblock";

// Attributes of block headers
inline constexpr char block[] = "block", blocktype[] = "blocktype", indexic[] = "indexic", nindex[] = "nindex";
inline constexpr char etyp[] = "etyp", etypelem[] = "etypelem", etyppart[] = "etyppart", etypnode[] = "etypnode";
inline constexpr char etypvar[] = "etypvar", etypzone[] = "etypzone", etypframe[] = "etypframe";
inline constexpr char nent[] = "nent", nele[] = "nele", npele[] = "npele", ndim[] = "ndim", nbint[] = "nbint";
inline constexpr char nbfloat[] = "nbfloat", ncoo[] = "ncoo", numl[] = "numl", nstate[] = "nstate";
inline constexpr char zoneid[] = "zoneid", fswitch[] = "fswitch", dmpswitch[] = "dmpswitch", series[] = "series";
inline constexpr char varnam[] = "varnam", varkey[] = "varkey", varclass[] = "varclass", type[] = "type";
inline constexpr char rank[] = "rank", idtrans[] = "idtrans", lenb[] = "lenb", lend[] = "lend";
inline constexpr char nvar[] = "nvar", cnt[] = "cnt", offs[] = "offs";
inline constexpr char subslen[] = "subslen", lvmap[] = "lvmap", tensor[] = "tensor";
inline constexpr char title[] = "title", sys[] = "sys", solver_name[] = "solver_name";
inline constexpr char solver_vers[] = "solver_vers", cdate[] = "cdate", ctime[] = "ctime", mdate[] = "mdate";
inline constexpr char mtime[] = "mtime", nbunit[] = "nbunit", ndunit[] = "ndunit", cversion[] = "cversion";
inline constexpr char lenudb[] = "lenudb", etyptext[] = "etyptext", nlines[] = "nlines", length[] = "length";
inline constexpr char etypprop[] = "etypprop", nbid[] = "nbid", nbstring[] = "nbstring";
inline constexpr char nuid[] = "nuid", etypcoll[] = "etypcoll", ncoll[] = "ncoll", ntyp[] = "ntyp";
inline constexpr char nenttot[] = "nenttot", npart[] = "npart", off[] = "off";

// Datasets
inline constexpr char res[] = "res", entid[] = "entid", idele[] = "idele", eloc[] = "eloc", fid[] = "fid";
inline constexpr char fidglob[] = "fidglob", indexident[] = "indexident", indexval[] = "indexval";
inline constexpr char pid[] = "pid", ic[] = "ic", iparam[] = "iparam", fparam[] = "fparam";
inline constexpr char mbunit[] = "mbunit", mdunit[] = "mdunit", ubid[] = "ubid", ubexp[] = "ubexp";
inline constexpr char udid[] = "udid", udexp[] = "udexp", cname[] = "cname", cid[] = "cid";
inline constexpr char subscr[] = "subscr", subscnt[] = "subscnt", subsoffs[] = "subsoffs", vmap[] = "vmap";
inline constexpr char ubtyp[] = "ubtyp", ubnam[] = "ubnam", ubcon[] = "ubcon", ubshift[] = "ubshift";
inline constexpr char udnam[] = "udnam", udscal[] = "udscal", ndbunit[] = "ndbunit", udbid[] = "udbid";
inline constexpr char udbexp[] = "udbexp", etypindex[] = "etypindex", line[] = "line", cparam[] = "cparam";
inline constexpr char status[] = "status", uid[] = "uid", idcoll[] = "idcoll", pcol[] = "pcol", mid[] = "mid";
inline constexpr char mtyp[] = "mtyp", pvtyp[] = "pvtyp";

// Words of the class of a variable
inline constexpr char CLASS_STRESS[] = "CLASS_STRESS", CLASS_STRAIN[] = "CLASS_STRAIN";
inline constexpr char CLASS_LENGTH[] = "CLASS_LENGTH", CLASS_ANGLE[] = "CLASS_ANGLE";

// Words that stand in place of an empty name, and prefixes inside names
inline constexpr char ZONE[] = "ZONE", FRAME[] = "FRAME", TIMESERIES1[] = "TIMESERIES1";
inline constexpr char LOADCASE_[] = "LOADCASE_", state_[] = "state";

inline constexpr std::size_t kTextWidth = 256;    // bytes of a stored text, blank padded
inline constexpr std::size_t kWidestNumber = 16;  // bytes of a number, whoever wrote it
inline constexpr std::size_t kPathWidth = 3000;   // bytes of a buffer for a path taken from HDF5
inline constexpr std::size_t kNameWidth = 512;    // bytes of a buffer for a link name
inline constexpr std::size_t kHeaderWidth = 64;   // bytes of the file header
inline constexpr int kStateDigits = 12;           // digits of the number in a state's group name

}  // namespace orvio::disk
