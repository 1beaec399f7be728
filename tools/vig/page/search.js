'use strict';

// It finds the events that have what is searched for, such as "processName=camera vmRssKB>204800".

const kTermPattern = /(?:[^\s"]|"[^"]*")+/g;
const kComparisonPattern = /^([^<>=!]+)(<=|>=|!=|<|>|=)(.*)$/s;

/** @type {Record<string, (order: number) => boolean>} */
const kHoldsForOrder = {
    '=': (order) => order === 0,
    '!=': (order) => order !== 0,
    '<': (order) => order < 0,
    '<=': (order) => order <= 0,
    '>': (order) => order > 0,
    '>=': (order) => order >= 0,
};

/**
 * Returns a number that is exact, however large it is.
 * @param {string} text
 */
function parsedNumber(text) {
    return /^[+-]?\d+$/.test(text) ? BigInt(text) : text.trim() === '' ? NaN : Number(text);
}

/**
 * Returns how to ask whether the column's value in a row is what the comparison wants.
 * @param {Recording} recording
 * @param {AttributeColumn} column
 * @param {string} operator
 * @param {string} wanted
 * @returns {(row: number) => boolean}
 */
function columnTest(recording, column, operator, wanted) {
    const { values } = column;
    if (column.kind === 'string' || column.kind === 'bool') {
        const texts = column.kind === 'string' ? recording.data.texts : ['false', 'true'];
        const matches = texts.map((text) => operator === '=' ? text === wanted : operator === '!=' && text !== wanted);
        return (row) => matches[Number(values[row])];
    }
    const number = parsedNumber(wanted);
    const holds = kHoldsForOrder[operator];
    if (Number.isNaN(number)) {
        return () => false;
    }
    return (row) => holds(values[row] < number ? -1 : values[row] > number ? 1 : values[row] == number ? 0 : NaN);
}

/**
 * @param {Recording} recording
 * @param {string} name
 * @param {string} operator
 * @param {string} wanted
 * @returns {(position: number) => boolean}
 */
function comparisonTest(recording, name, operator, wanted) {
    const tests = recording.tables.map((table) => table
        .filter((column) => recording.data.names[column.name] === name)
        .map((column) => ({ present: column.present, holds: columnTest(recording, column, operator, wanted) })));
    return (position) => {
        const row = recording.rows[position];
        return tests[recording.types[position]].some(({ present, holds }) => (!present || present[row] !== 0) && holds(row));
    };
}

/**
 * @param {Recording} recording
 * @param {string} word
 * @returns {(position: number) => boolean}
 */
function wordTest(recording, word) {
    const wanted = word.toLowerCase();
    /** @param {string} text */
    const has = (text) => text.toLowerCase().includes(wanted);
    const types = recording.data.types.map(has);
    const texts = recording.data.texts.map(has);
    const lineTexts = recording.data.lineTexts.map(has);
    const columns = recording.tables.map((table) => table.filter((column) => column.kind === 'string'));
    const told = new Uint8Array(recording.count);
    for (let i = 0; i < recording.lineAt.length; ++i) {
        told[recording.lineAt[i]] |= lineTexts[recording.lineTexts[i]] ? 1 : 0;
    }
    return (position) => {
        const row = recording.rows[position];
        const type = recording.types[position];
        return types[type] || told[position] !== 0 || columns[type].some(({ present, values }) =>
            (!present || present[row] !== 0) && texts[Number(values[row])]);
    };
}

/**
 * Returns a query without what people may put around its signs: "vmRssKB == 7, x > 1" is "vmRssKB=7 x>1".
 * @param {string} query
 */
function tightened(query) {
    return query.replace(/"[^"]*"|\s*(<=|>=|!=|==|=|<|>)\s*|,(?=\s|$)/g, (match, /** @type {string | undefined} */ sign) =>
        match.startsWith('"') ? match : sign === '==' ? '=' : sign ?? ' ');
}

/**
 * Returns the positions of the events that have all that the query names, and what it names that no event or filter has.
 * @param {Recording} recording
 * @param {string} query
 * @returns {{positions: number[], unknown: string | null}}
 */
function searched(recording, query) {
    /** @type {string | null} */
    let unknown = null;
    const tests = (tightened(query).match(kTermPattern) ?? []).map((quoted) => {
        const term = quoted.replaceAll('"', '');
        // What is in quotes from its beginning is a word, whatever signs it has.
        const comparison = quoted.startsWith('"') ? null : kComparisonPattern.exec(term);
        if (comparison && !recording.data.names.includes(comparison[1])) {
            unknown = comparison[1];
        }
        return comparison ? comparisonTest(recording, comparison[1], comparison[2], comparison[3])
            : wordTest(recording, term);
    });
    /** @type {number[]} */
    const found = [];
    for (let position = 0; tests.length > 0 && position < recording.count; ++position) {
        if (tests.every((test) => test(position))) {
            found.push(position);
        }
    }
    return { positions: found, unknown };
}
