// What emscripten makes of engine/.
declare module 'engine' {
  export interface Engine {
    HEAPU8: Uint8Array;
    _malloc(size: number): number;
    _free(place: number): void;
    _kztns_answer(message: number, length: number): number;
    _kztns_answer_length(): number;
  }
  export default function createEngine(options: { wasmBinary: Uint8Array }): Promise<Engine>;
}

// The bundle has them inside.
declare module 'engine-wasm' {
  const bytes: Uint8Array;
  export default bytes;
}
declare module 'worker-source' {
  const source: string;
  export default source;
}
declare module '*.ora' {
  const text: string;
  export default text;
}
declare module 'words' {
  import type { Verdict } from './protocol';
  export const blocks: string[];
  export const keys: Record<string, string>;
  export const verdicts: Record<Verdict, string>;
}
declare module 'licences' {
  const text: string;
  export default text;
}
