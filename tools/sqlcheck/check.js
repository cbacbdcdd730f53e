#!/usr/bin/env node
// Parses SQL Server statements with an independent T-SQL parser, so that a statement that
// the tests pin letter for letter is also known to be well-formed T-SQL.
//
// Usage:  node check.js [file]
//   Statements come as a JSON array of strings, from the file when one is named (or "-"),
//   else from standard input. One line per statement that does not parse: the statement
//   and the parser's message. Exit status 0 when every statement parses, 1 when one does
//   not, 2 when the input cannot be read or the parser is not installed.
//
// The texts are parsed as they are given, with two normalisations for notations that are
// not T-SQL at all but belong to the client API, and that SQL Server itself never sees in
// that form:
//   1. Positional parameter markers "?" outside string literals become @p1, @p2, ...
//      The ODBC driver sends a prepared command as a parameterised batch with named
//      parameters; the parser (rightly) has no "?" in its T-SQL grammar.
//   2. The ODBC procedure-call escape "{call name(...)}" loses its braces. The driver
//      rewrites the escape into a procedure call; the parser knows CALL but not the
//      escape braces around it.
// Nothing else is rewritten: quirks of the texts themselves (a number glued to the next
// keyword as in "eacompanyid=1and eaid=5", isnumeric, convert(int,...), DateDiff(dd,...),
// max(date)+1, "top 1", blanks and letter case) are parsed as written.

'use strict';

const fs = require('fs');
const path = require('path');

function fail(message) {
  process.stdout.write(message + '\n');
  process.exit(2);
}

let Parser;
try {
  ({ Parser } = require(path.join(__dirname, 'node_modules', 'node-sql-parser')));
} catch (e) {
  fail('node-sql-parser is not installed in ' + __dirname + ' (run scripts/install-deps, or npm install there): ' +
       e.message.split('\n')[0]);
}

// Replaces each "?" outside single-quoted literals (where '' is a quote inside the
// literal) and outside bracketed or double-quoted identifiers by the next @pN.
function nameParameterMarkers(sql) {
  let out = '';
  let n = 0;
  let closing = null;  // the character that ends the literal or identifier we are in
  for (let i = 0; i < sql.length; ++i) {
    const c = sql[i];
    if (closing) {
      out += c;
      if (c === closing) {
        if (sql[i + 1] === closing) {  // doubled: still inside
          out += sql[++i];
        } else {
          closing = null;
        }
      }
      continue;
    }
    if (c === "'" || c === '"') closing = c;
    else if (c === '[') closing = ']';
    out += c === '?' ? '@p' + ++n : c;
  }
  return out;
}

function stripCallEscape(sql) {
  const m = /^\s*\{\s*(call\s[\s\S]*?)\s*\}\s*$/i.exec(sql);
  return m ? m[1] : sql;
}

function normalise(sql) {
  return nameParameterMarkers(stripCallEscape(sql));
}

function readInput() {
  const arg = process.argv[2];
  let text;
  try {
    text = arg && arg !== '-' ? fs.readFileSync(arg, 'utf8') : fs.readFileSync(0, 'utf8');
  } catch (e) {
    fail('cannot read ' + (arg && arg !== '-' ? arg : 'standard input') + ': ' + e.message);
  }
  let statements;
  try {
    statements = JSON.parse(text);
  } catch (e) {
    fail('the input is not JSON: ' + e.message);
  }
  if (!Array.isArray(statements) || statements.some((s) => typeof s !== 'string'))
    fail('the input must be a JSON array of strings');
  return statements;
}

function main() {
  const statements = readInput();
  const parser = new Parser();
  let failures = 0;
  for (const sql of statements) {
    let problem = null;
    try {
      const ast = parser.astify(normalise(sql), { database: 'transactsql' });
      // Each text is sent to the server on its own: two statements in one text are a bug.
      if (Array.isArray(ast) && ast.length !== 1) problem = 'expected one statement, found ' + ast.length;
    } catch (e) {
      problem = String(e.message || e).split('\n')[0];
    }
    if (problem) {
      ++failures;
      process.stdout.write('T-SQL parse failure: ' + JSON.stringify(sql) + '\n    ' + problem + '\n');
    }
  }
  if (failures) process.stdout.write(failures + ' of ' + statements.length + ' statements do not parse\n');
  process.exit(failures ? 1 : 0);
}

main();
