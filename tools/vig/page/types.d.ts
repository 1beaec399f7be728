// What the compiler's own declarations lack.

declare class DecompressionStream implements GenericTransformStream {
    constructor(format: 'gzip');
    readonly readable: ReadableStream;
    readonly writable: WritableStream;
}

// What the tool writes into the page.

interface PageData {
    title: string;
    program: string;
    summary: string;
    note: string;
    recordings: RecordingSummary[];
}

interface RecordingSummary {
    name: string;
    facts: string[];
    event: number | null;
    machine: number;
    compared: boolean;
}

interface ColumnPlace {
    type: 'u8' | 'u16' | 'u32' | 'i64' | 'u64' | 'f64';
    at: number;
    count: number;
}

interface OptionalColumnPlace {
    values: ColumnPlace;
    present: ColumnPlace | null;
}

interface RecordingData {
    events: {
        count: number;
        number: ColumnPlace;
        type: ColumnPlace;
        time: OptionalColumnPlace | null;
        timeout: OptionalColumnPlace | null;
    };
    types: string[];
    tables: (OptionalColumnPlace & { name: number; kind: AttributeKind })[][];
    names: string[];
    texts: string[];
    shownTexts: string[];
    wholeStart: boolean;
    machines: MachineData[];
    lines: { at: ColumnPlace; machine: ColumnPlace; step: ColumnPlace; kind: ColumnPlace; text: ColumnPlace };
    lineTexts: string[];
    picture: string;
    noPicture: string;
}

type AttributeKind = 'uint64' | 'int64' | 'double' | 'bool' | 'string';

interface MachineData {
    label: string;
    number: number;
    states: string[];
    transitions: Transition[];
    turns: ColumnPlace;
    shapes: number[][];
    drawn: { at: ColumnPlace; number: ColumnPlace; text: ColumnPlace };
}

interface Transition {
    name: string;
    path: string;
    from: number;
    to: number;
    type: string;
    filters: Filter[];
    actions: string[];
    tried: number;
    fired: number;
    why: string[];
}

interface Filter {
    condition: string;
    operator: string;
    kind: AttributeKind;
    left: Operand;
    right: Operand;
    stopped: number;
    nearest: number | null;
}

interface Operand {
    constant?: string;
    attribute?: number;
    absent?: string;
    function?: string;
}

// What the program makes of it.

interface NumberArray extends ArrayLike<number> {
    readonly [index: number]: number;
}

interface AttributeColumn {
    name: number;
    kind: AttributeKind;
    values: ArrayLike<number | bigint>;
    present: NumberArray | null;
}

interface Attempt {
    transition: number;
    made: number;
    fired: boolean;
}

interface Step {
    state: number;
    raised: boolean;
    type: number;
    attempts: Attempt[];
}

interface Comparison {
    filter: Filter;
    holds: boolean;
    left: string;
    right: string;
}

interface Line {
    machine: number;
    step: number;
    isTrigger: boolean;
    texts: string[];
}

interface Choice {
    transition: number;
    filter: number | null;
}

interface Plot {
    name: string;
    constants: { text: string; value: number }[];
    series: { positions: Uint32Array; values: Float64Array }[];
    isCompared: (position: number) => boolean;
    least: number;
    greatest: number;
}
