int placeholder_support = 0;
