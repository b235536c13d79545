import * as binding from './index.js';

export * from './index.js';
export default binding;
