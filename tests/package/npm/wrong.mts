import { load } from 'qx-bridge';

// @ts-expect-error: an error is expected here, and its absence is one
export const wrong: number = load();
